#!/bin/bash
# Builds and runs a project that has nothing of this tree but what a user has.
# Usage: stranger.sh findPackage | addSubdirectory | pkgConfig | otherWxWidgets | debianPackages
# The environment tells the rest: QIX_SOURCE, QIX_BUILD, CMAKE, CMAKE_GENERATOR, CXX, CXXFLAGS.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
strictly=(-std=c++17 -Wall -Wextra -Wpedantic -Wshadow -Werror)
folder=$(mktemp -d "${TMPDIR:-/tmp}/a stranger XXXXXX")
trap 'rm -rf "$folder"' EXIT
unset QIX_TESTWORKDIR

# Everything but the sources is moved away from where it was installed: nothing may point there.
installQix()
{
    "$CMAKE" --install "$QIX_BUILD" --prefix "$folder/first prefix" >/dev/null
    mv "$folder/first prefix" "$folder/prefix"
}

buildWithCMake() # <options of the first cmake>...
{
    "$CMAKE" -S "$folder" -B "$folder/build" -DCMAKE_BUILD_TYPE=Debug "$@"
    "$CMAKE" --build "$folder/build"
}

runTests()
{
    (cd "$folder" && "$@" '*') | tee "$folder/output"
    # the test and its group
    grep -qx '2 OK, 0 Failed, 0 Aborted, 0 Skipped' "$folder/output"
    test -s "$folder/testWork/$(id -un)/testLog.txt"
}

findPackage()
{
    installQix
    cp "$here/findPackage/CMakeLists.txt" "$folder"
    buildWithCMake "-DCMAKE_PREFIX_PATH=$folder/prefix"
    runTests build/ledgerTest
}

addSubdirectory()
{
    cp "$here/addSubdirectory/CMakeLists.txt" "$folder"
    ln -s "$QIX_SOURCE" "$folder/qix"
    buildWithCMake -DCMAKE_CXX_FLAGS_DEBUG=-O0
    runTests build/ledgerTest
    expectOnlyOwnTests
}

expectOnlyOwnTests()
{
    "$CMAKE" -E chdir "$folder/build" ctest | tee "$folder/tests"
    grep -q 'Test #1: ledger [.]* *Passed' "$folder/tests"
    grep -q '100% tests passed, 0 tests failed out of 1' "$folder/tests"
}

pkgConfig()
{
    installQix
    export PKG_CONFIG_PATH
    PKG_CONFIG_PATH=$(dirname "$(find "$folder/prefix" -name qix.pc)")
    local flags
    # pkg-config writes its words as a shell reads them.
    eval "flags=($(pkg-config --cflags --libs qix))"
    # shellcheck disable=SC2086  # the flags of the build are several words
    "$CXX" ${CXXFLAGS-} "${strictly[@]}" -o "$folder/ledgerTest" "$folder/ledgerTest.cpp" "${flags[@]}"
    runTests env "LD_LIBRARY_PATH=$(dirname "$PKG_CONFIG_PATH")" ./ledgerTest
}

# A wxWidgets of another version than the one that qix was built with: as much as CMake looks at.
makeOtherWxWidgets()
{
    mkdir -p "$folder/wx/include/wx"
    printf '#define wxMAJOR_VERSION      3\n#define wxMINOR_VERSION      9\n' \
        >"$folder/wx/include/wx/version.h"
    cat >"$folder/wx/wx-config" <<END
#!/bin/sh
case "\$*" in
    *--cxxflags*) echo "'-I$folder/wx/include'" ;;
    *--libs*) exec wx-config --libs base ;;
    *--version*) echo 3.9.0 ;;
esac
END
    chmod +x "$folder/wx/wx-config"
}

otherWxWidgets()
{
    installQix
    makeOtherWxWidgets
    cp "$here/findPackage/CMakeLists.txt" "$folder"
    if buildWithCMake "-DCMAKE_PREFIX_PATH=$folder/prefix" \
        "-DwxWidgets_CONFIG_EXECUTABLE=$folder/wx/wx-config" >"$folder/output" 2>&1; then
        echo "another wxWidgets is not refused"
        exit 1
    fi
    tr -s ' \n' ' ' <"$folder/output" | tee "$folder/words"
    grep -q 'This qix was built with wxWidgets [0-9.]*, and here CMake finds the headers of wxWidgets 3.9.' \
        "$folder/words"
}

debianPackages()
{
    (cd "$QIX_BUILD" && "$(dirname "$CMAKE")/cpack" -G DEB -B "$folder/packages")
    # It leaves files behind in the folder for temporary ones.
    mkdir "$folder/temporary"
    TMPDIR=$folder/temporary lintian --allow-root --fail-on error "$folder"/packages/*.deb
    # Of two versions of wxWidgets, the headers are those that the libraries were built with.
    dpkg-deb --field "$folder"/packages/libqix-dev_*.deb Depends | tee "$folder/depends"
    local headers
    headers=$(sed -n 's/.*-isystem \([^ ]*wx\/include[^ ]*\).*/\1/p' "$QIX_BUILD/zel.pc")
    grep -q "$(dpkg --search "$(realpath "$headers")/wx/setup.h" | sed 's/[:,].*//')" "$folder/depends"
    local package
    for package in "$folder"/packages/*.deb
    do
        dpkg-deb --extract "$package" "$folder/root"
    done
    cp "$here/findPackage/CMakeLists.txt" "$folder"
    buildWithCMake "-DCMAKE_PREFIX_PATH=$folder/root/usr"
    # Only where the system's loader looks does libqix find libzel without help.
    runTests env "LD_LIBRARY_PATH=$(dirname "$(find "$folder/root" -name libzel.so.1)")" build/ledgerTest
}

cp "$here/ledgerTest.cpp" "$folder"
"$1"
