# Debian packages by `cpack -G DEB`: libqix1, which programs need to run, and libqix-dev, which
# people need to write tests.

set(QIX_DEBIAN "${PROJECT_SOURCE_DIR}/packaging/debian")
set(QIX_RUNTIME_PACKAGE libqix${PROJECT_VERSION_MAJOR})

# What Debian wants to read in each package. An ordinary installation has no use for it.
function(qix_install_package_docs component package)
    set(folder "${CMAKE_INSTALL_DATAROOTDIR}/doc/${package}")
    install(FILES "${QIX_DEBIAN}/copyright"
        DESTINATION "${folder}" COMPONENT ${component} EXCLUDE_FROM_ALL)
    install(FILES "${PROJECT_BINARY_DIR}/changelog.gz"
        DESTINATION "${folder}" COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

find_program(QIX_GZIP gzip REQUIRED)
add_custom_command(OUTPUT "${PROJECT_BINARY_DIR}/changelog.gz"
    COMMAND "${QIX_GZIP}" -9nc "${QIX_DEBIAN}/changelog" > "${PROJECT_BINARY_DIR}/changelog.gz"
    DEPENDS "${QIX_DEBIAN}/changelog"
    VERBATIM)
add_custom_target(qix_changelog ALL DEPENDS "${PROJECT_BINARY_DIR}/changelog.gz")
qix_install_package_docs(runtime ${QIX_RUNTIME_PACKAGE})
qix_install_package_docs(development libqix-dev)

# The package that the headers of wxWidgets have come with; with another one, two versions of it
# would meet in one program.
function(qix_get_wx_package package)
    set(${package} "" PARENT_SCOPE)
    find_program(QIX_DPKG dpkg)
    get_target_property(folders wx::base INTERFACE_INCLUDE_DIRECTORIES)
    foreach(folder IN LISTS folders)
        if(QIX_DPKG AND EXISTS "${folder}/wx/setup.h")
            file(REAL_PATH "${folder}/wx/setup.h" header)
            execute_process(COMMAND "${QIX_DPKG}" --search "${header}"
                OUTPUT_VARIABLE owner ERROR_QUIET)
            string(REGEX REPLACE "[:,].*" "" owner "${owner}")
            set(${package} "${owner}" PARENT_SCOPE)
        endif()
    endforeach()
endfunction()

set(CPACK_GENERATOR DEB)
set(CPACK_PROJECT_CONFIG_FILE "${PROJECT_SOURCE_DIR}/packaging/buildForPackages.cmake")
set(CPACK_QIX_CXX_COMPILER "${CMAKE_CXX_COMPILER}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "unit-test framework for console test executables in C++")
set(QIX_ABOUT "qix runs the tests of a console test executable, which are selected on the
command line or in a menu, and reports on the console and in a log file.")

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The qix developers <maintainers@users.noreply.invalid>")
# A program that was linked with one version runs with each later one of the same package.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${QIX_RUNTIME_PACKAGE})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${QIX_DEBIAN}/triggers")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${QIX_ABOUT}

This package contains the libraries that a test executable needs to run.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqix-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
qix_get_wx_package(wx_package)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${QIX_RUNTIME_PACKAGE} (= ${PROJECT_VERSION})")
if(wx_package)
    string(APPEND CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ", ${wx_package}")
endif()
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "${QIX_ABOUT}

This package contains the headers, and what CMake and pkg-config need to find
the libraries.")

include(CPack)
