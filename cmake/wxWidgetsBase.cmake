# Defines wx::base, the base library of wxWidgets and nothing of a graphical toolkit. Where that is
# not installed there is no such target, and the caller says what that means to it.
#
# CMake's own module gives variables only, and its headers are marked as the system's here, so that
# their warnings stay theirs. It works in a function, since a project around this one may have
# looked for other parts of wxWidgets and still need the variables that this gave it.

function(qix_define_wx_base)
    find_package(wxWidgets 3.0 QUIET COMPONENTS base)
    if(NOT wxWidgets_FOUND)
        return()
    endif()
    # What wx-config tells may have blanks too many, which some versions of CMake's module keep.
    list(REMOVE_ITEM wxWidgets_LIBRARIES "")
    add_library(wx::base INTERFACE IMPORTED)
    set_target_properties(wx::base PROPERTIES
        INTERFACE_INCLUDE_DIRECTORIES "${wxWidgets_INCLUDE_DIRS}"
        INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${wxWidgets_INCLUDE_DIRS}"
        INTERFACE_LINK_LIBRARIES "${wxWidgets_LIBRARIES}"
        INTERFACE_COMPILE_DEFINITIONS "${wxWidgets_DEFINITIONS};wxUSE_GUI=0")
endfunction()

if(NOT TARGET wx::base)
    qix_define_wx_base()
endif()

# The major and minor version of the headers of wx::base; empty where they do not tell it.
function(qix_get_wx_version version)
    get_target_property(folders wx::base INTERFACE_INCLUDE_DIRECTORIES)
    set(numbers "")
    foreach(folder IN LISTS folders)
        if(EXISTS "${folder}/wx/version.h")
            file(STRINGS "${folder}/wx/version.h" numbers
                REGEX "^#define +wx(MAJOR|MINOR)_VERSION +[0-9]+")
        endif()
    endforeach()
    list(TRANSFORM numbers REPLACE "^.* ([0-9]+).*$" "\\1")
    list(JOIN numbers "." numbers)
    set(${version} "${numbers}" PARENT_SCOPE)
endfunction()
