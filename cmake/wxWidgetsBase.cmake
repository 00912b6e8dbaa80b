# Defines wx::base, the base library of wxWidgets and nothing of a graphical toolkit.
#
# CMake's own module gives variables only, and its headers are marked as the system's here, so that
# their warnings stay theirs.

if(NOT TARGET wx::base)
    find_package(wxWidgets 3.0 REQUIRED COMPONENTS base)
    add_library(wx::base INTERFACE IMPORTED)
    set_target_properties(wx::base PROPERTIES
        INTERFACE_INCLUDE_DIRECTORIES "${wxWidgets_INCLUDE_DIRS}"
        INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${wxWidgets_INCLUDE_DIRS}"
        INTERFACE_LINK_LIBRARIES "${wxWidgets_LIBRARIES}"
        INTERFACE_COMPILE_DEFINITIONS "${wxWidgets_DEFINITIONS};wxUSE_GUI=0")
endif()
