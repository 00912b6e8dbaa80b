# Toolchain for arm64 on another Debian system: its cross compiler g++-aarch64-linux-gnu, the
# libraries of the arm64 packages, and qemu to run what has been built.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)
# The wx-config that is found otherwise belongs to the libraries of this system.
file(GLOB wxWidgets_CONFIG_EXECUTABLE /usr/lib/aarch64-linux-gnu/wx/config/*-unicode-3.*)
