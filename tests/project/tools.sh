#!/bin/bash
# tools/setup says whose fault it is when it cannot install anything, tools/build which CMake is too
# old, with stand-ins for what they call, and tools/skipped why tests were skipped: tools.sh TOOLS
set -euo pipefail

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

stand_in() # <name> <what it does>
{
    printf '#!/bin/bash\n%s\n' "$2" >"$folder/$1"
    chmod +x "$folder/$1"
}

expect() # <text> <command>...
{
    local output
    if output=$(PATH=$folder:$PATH "${@:2}" 2>&1); then
        echo "this has passed: ${*:2}"
        exit 1
    fi
    if [[ $output != *"$1"* ]]; then
        printf '"%s" is missing in this output:\n%s\n' "$1" "$output"
        exit 1
    fi
}

setup=("$1/setup" demo)
stand_in id 'echo 1000'
stand_in dpkg-query 'exit 1'
stand_in apt-cache 'exit 1'
stand_in apt-get 'exit 0'
stand_in sudo 'exit 1'
expect 'sudo has failed.' "${setup[@]}"

stand_in sudo '"$@"'
stand_in apt-get 'exit 1'
expect 'apt-get has failed.' "${setup[@]}"

stand_in apt-cache '[[ $2 == libwxbase3.0-dev ]]'
expect 'libwxbase3.0-dev' "${setup[@]}"

stand_in cmake 'echo "cmake version 3.18.4"'
expect 'CMake 3.25 or later is needed to build qix, and 3.18.4 is here.' "$1/build" release

cat >"$folder/results.xml" <<'END'
<testsuite>
  <testcase name="unit"><skipped/><system-out>unitTest.cpp:7: Skipped
there is no disk

[  SKIPPED ] unit (0 ms)</system-out></testcase>
  <testcase name="script"><skipped/><system-out>begins
needs root</system-out></testcase>
  <testcase name="silent"><skipped/></testcase>
  <testcase name="passed"><system-out>needs nothing</system-out></testcase>
</testsuite>
END
diff - <("$1/skipped" "$folder/results.xml") <<'END'

Skipped, and why:
  unit: there is no disk
  script: needs root
  silent: it does not say
END
