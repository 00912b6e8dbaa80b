#!/bin/bash
# Each public header says in one error that it needs a newer language: oldLanguage.sh COMPILER INCLUDE
set -euo pipefail

cd "$2"
for header in */*.h; do
    if errors=$(echo "#include <$header>" | "$1" -std=c++14 -fsyntax-only -I. -x c++ - 2>&1); then
        echo "$header is read as C++14"
        exit 1
    fi
    if [[ $(grep -c 'error:' <<<"$errors") != 1 || $errors != *'qix needs C++17 or later'* ]]; then
        printf '%s gives these errors:\n%s\n' "$header" "$errors"
        exit 1
    fi
done
