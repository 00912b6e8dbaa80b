#!/bin/bash
# The example suite passes, and the test that is meant to fail does: example.sh EXECUTABLE
set -euo pipefail

QIX_TESTWORKDIR=$(mktemp -d)
export QIX_TESTWORKDIR
trap 'rm -rf "$QIX_TESTWORKDIR"' EXIT

expect()
{
    local expected=$1 name=$2
    if ! grep -q -e "$expected" <<<"$output"; then
        printf '%s: "%s" is missing in this output:\n%s\n' "$name" "$expected" "$output"
        exit 1
    fi
}

output=$("$1" '*' -broken)
expect ' OK, 0 Failed, 1 Aborted, [1-9][0-9]* Skipped$' 'the passing groups'

output=$(printf 'i +console\ny\n' | "$1")
expect '^2 OK, 0 Failed, 0 Aborted, 0 Skipped$' 'the interactive test, answered with yes'

output=$(ZEL_TEST_SECRETS=$(realpath "$(dirname "$0")/../../examples/suite/secrets.ini") "$1" +account)
expect '^3 OK, 0 Failed, 0 Aborted, 1 Skipped$' 'the tests of the account, with a secret'

output=$(ZEL_TEST_SECRETS= "$1" +account || true)
expect 'path to test secrets file not defined' 'the tests of the account, without a secret'

if output=$("$1" +broken); then
    echo "the broken group has passed"
    exit 1
fi
expect '^TEST FAILED: broken.tenthsAddUp$' 'the broken group'
expect ' OK, 1 Failed, 0 Aborted, 0 Skipped$' 'the broken group'
