# What `cmake --install` and CPack put where: the libraries with their headers, the CMake package
# that find_package(qix) finds, and the files of pkg-config. Nothing of it names the folder that it
# was installed to, so the whole can be moved.

include(CMakePackageConfigHelpers)

set(QIX_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/qix")

install(TARGETS zel EXPORT zelTargets
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development)
install(TARGETS qix qix_main EXPORT qixTargets
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/qix" "${PROJECT_SOURCE_DIR}/include/zel"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development FILES_MATCHING PATTERN *.h)

foreach(namespace IN ITEMS zel qix)
    install(EXPORT ${namespace}Targets NAMESPACE ${namespace}::
        DESTINATION "${QIX_CMAKEDIR}" COMPONENT development)
endforeach()
qix_get_wx_version(QIX_WX_VERSION)
configure_package_config_file(
    "${CMAKE_CURRENT_LIST_DIR}/qixConfig.cmake.in" "${PROJECT_BINARY_DIR}/qixConfig.cmake"
    INSTALL_DESTINATION "${QIX_CMAKEDIR}")
write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/qixConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/qixConfig.cmake"
    "${PROJECT_BINARY_DIR}/qixConfigVersion.cmake"
    "${CMAKE_CURRENT_LIST_DIR}/wxWidgetsBase.cmake"
    "${CMAKE_CURRENT_LIST_DIR}/QixDiscoverTests.cmake"
    "${CMAKE_CURRENT_LIST_DIR}/QixAddTests.cmake"
    DESTINATION "${QIX_CMAKEDIR}" COMPONENT development)

# The compiler flags of wx::base: Debian's wxWidgets has no file for pkg-config to refer to.
function(qix_wx_flags cflags libs)
    get_target_property(folders wx::base INTERFACE_INCLUDE_DIRECTORIES)
    get_target_property(definitions wx::base INTERFACE_COMPILE_DEFINITIONS)
    get_target_property(libraries wx::base INTERFACE_LINK_LIBRARIES)
    list(TRANSFORM folders PREPEND "-isystem ")
    list(TRANSFORM definitions PREPEND "-D")
    list(JOIN folders " " folders)
    list(JOIN definitions " " definitions)
    list(JOIN libraries " " libraries)
    set(${cflags} "${folders} ${definitions}" PARENT_SCOPE)
    set(${libs} "${libraries}" PARENT_SCOPE)
endfunction()

function(qix_install_pkg_config)
    qix_wx_flags(QIX_WX_CFLAGS QIX_WX_LIBS)
    file(RELATIVE_PATH QIX_PC_PREFIX
        "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
    string(REGEX REPLACE "/$" "" QIX_PC_PREFIX "${QIX_PC_PREFIX}")
    foreach(name IN ITEMS zel qix)
        configure_file("${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in"
            "${PROJECT_BINARY_DIR}/${name}.pc" @ONLY)
        install(FILES "${PROJECT_BINARY_DIR}/${name}.pc"
            DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
    endforeach()
endfunction()
qix_install_pkg_config()
