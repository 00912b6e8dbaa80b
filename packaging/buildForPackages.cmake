# Run by cpack: builds what goes into the packages, in a tree of its own and as the system wants it.
# The tree that cpack was called in may be for debugging, or for another prefix, whose layout
# differs: Debian has the libraries in a folder named after the architecture.

set(tree "${CPACK_PACKAGE_DIRECTORY}/package")

function(qix_run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

qix_run("${CMAKE_COMMAND}" -S "${CMAKE_CURRENT_LIST_DIR}/.." -B "${tree}"
    -G "${CPACK_CMAKE_GENERATOR}"
    "-DCMAKE_CXX_COMPILER=${CPACK_QIX_CXX_COMPILER}"
    -DCMAKE_BUILD_TYPE=RelWithDebInfo
    -DCMAKE_INSTALL_PREFIX=/usr
    -DCMAKE_SKIP_INSTALL_RPATH=ON
    -DQIX_BUILD_EXAMPLES=OFF
    -DQIX_BUILD_TESTS=OFF)
qix_run("${CMAKE_COMMAND}" --build "${tree}")

set(CPACK_INSTALL_CMAKE_PROJECTS "${tree};qix;ALL;/")
