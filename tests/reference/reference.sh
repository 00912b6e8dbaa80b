#!/bin/bash
# Makes the API reference in another folder than usual: reference.sh <doxygen> <folder>
# The reason of a warning is in the output; it ends the test.
set -euo pipefail

{
    cat docs/Doxyfile
    echo "OUTPUT_DIRECTORY = \"$2\""
} | "$1" -
test -s "$2/html/classqix_1_1ITestItem.html"
