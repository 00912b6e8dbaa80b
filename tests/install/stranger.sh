#!/bin/bash
# Builds and runs a project that has nothing of this tree but what a user has.
# Usage: stranger.sh findPackage | addSubdirectory | pkgConfig | debianPackages
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
    "$CMAKE" -E chdir "$folder/build" ctest -N | tee "$folder/tests"
    grep -qx 'Total Tests: 1' "$folder/tests"
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

debianPackages()
{
    (cd "$QIX_BUILD" && "$(dirname "$CMAKE")/cpack" -G DEB -B "$folder/packages")
    lintian --allow-root --fail-on error "$folder"/packages/*.deb
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
