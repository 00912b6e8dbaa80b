# qix_discover_tests(<target>
#     [PER test|group]
#     [PREFIX <text>]
#     [WORKING_DIRECTORY <folder>]
#     [DISCOVERY_TIMEOUT <seconds>]
#     [PROPERTIES <name> <value>...])
#
# Makes tests of CTest from those of a program that has the ready main. CTest asks the program for
# them whenever it starts, so that the build runs nothing.
#
#   PER                test (the default): one for each test, called by its id. group: one for each
#                      group at the root, and for each test without a group.
#   PREFIX             stands in front of each name
#   WORKING_DIRECTORY  where the program starts; by default the caller's folder of the build
#   DISCOVERY_TIMEOUT  how long the program may take to list its tests; 60 by default
#   PROPERTIES         properties of CTest for each test, which may have generator expressions. They
#                      stand last, and outweigh those that follow; lists, such as labels, are joined.
#
# Each test has LABELS (its class of duration, and its tags), TIMEOUT and COST (from that class), its
# place in the sources for editors, and a folder of its own for its log and files. It counts as
# skipped when all it ran was skipped or aborted. Interactive tests are left out. A program that
# cannot list its tests makes one test <prefix><target>_NOT_LISTED, which fails and tells why.

include_guard(GLOBAL)

# The text as an argument of CMake's language in which nothing has a meaning.
function(qix_bracket variable text)
    set(level "=")
    string(FIND "${text}]" "]${level}]" end)
    while(NOT end EQUAL -1)
        string(APPEND level "=")
        string(FIND "${text}]" "]${level}]" end)
    endwhile()
    # A line end right behind the opening bracket is not part of it.
    set(${variable} "[${level}[\n${text}]${level}]" PARENT_SCOPE)
endfunction()

# The arguments are looked at one by one: as a list they would fall apart at other places.
function(qix_discover_tests target)
    set(PER test)
    set(PREFIX "")
    set(WORKING_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}")
    set(DISCOVERY_TIMEOUT 60)
    set(index 1)
    while(index LESS ARGC AND NOT "${ARGV${index}}" STREQUAL "PROPERTIES")
        set(option "${ARGV${index}}")
        math(EXPR value "${index} + 1")
        math(EXPR index "${index} + 2")
        if(NOT option MATCHES "^(PER|PREFIX|WORKING_DIRECTORY|DISCOVERY_TIMEOUT)$")
            message(FATAL_ERROR "qix_discover_tests(${target}): unknown argument '${option}'")
        elseif(NOT value LESS ARGC)
            message(FATAL_ERROR "qix_discover_tests(${target}): ${option} lacks its value")
        endif()
        set(${option} "${ARGV${value}}")
    endwhile()
    if(NOT PER MATCHES "^(test|group)$")
        message(FATAL_ERROR "qix_discover_tests(${target}): PER is 'test' or 'group', not '${PER}'")
    endif()
    if(NOT DISCOVERY_TIMEOUT MATCHES "^[0-9]+$")
        message(FATAL_ERROR "qix_discover_tests(${target}): DISCOVERY_TIMEOUT is a number of "
            "seconds, not '${DISCOVERY_TIMEOUT}'")
    endif()
    set(properties "")
    math(EXPR index "${index} + 1")
    while(index LESS ARGC)
        qix_bracket(property "${ARGV${index}}")
        string(APPEND properties " ${property}")
        math(EXPR index "${index} + 1")
    endwhile()
    qix_write_discovery()
endfunction()

# Commands that set the variables that are named.
function(qix_set_commands output)
    set(commands "")
    foreach(variable IN LISTS ARGN)
        qix_bracket(text "${${variable}}")
        string(APPEND commands "set(${variable} ${text})\n")
    endforeach()
    set(${output} "${commands}" PARENT_SCOPE)
endfunction()

# Writes the scripts that CTest reads, from the variables of qix_discover_tests.
function(qix_write_discovery)
    # A target may be discovered more than once, by tests and by groups for example.
    get_property(number TARGET ${target} PROPERTY QIX_DISCOVERIES)
    math(EXPR number "0${number} + 1")
    set_property(TARGET ${target} PROPERTY QIX_DISCOVERIES ${number})

    set(cmake "${CMAKE_COMMAND}") # which CTest does not know
    set(folder "${CMAKE_CURRENT_BINARY_DIR}/qix/${target}-${number}")
    set(program "$<TARGET_FILE:${target}>")
    set(emulator "$<TARGET_PROPERTY:${target},CROSSCOMPILING_EMULATOR>")
    set(source_folders "${CMAKE_CURRENT_SOURCE_DIR};${CMAKE_SOURCE_DIR};${CMAKE_BINARY_DIR}")
    qix_set_commands(known cmake target PREFIX folder)
    qix_set_commands(all cmake target PREFIX folder PER WORKING_DIRECTORY DISCOVERY_TIMEOUT program
        emulator source_folders)
    set(set_properties "")
    if(NOT properties STREQUAL "")
        set(set_properties "set_tests_properties(\"\${name}\" PROPERTIES${properties})\n")
    endif()
    set(add_tests "include(\"${CMAKE_CURRENT_FUNCTION_LIST_DIR}/QixAddTests.cmake\")\n")
    set(script "block()\n${all}set(unknown_configuration OFF)\nfunction(qix_set_own_properties name)\n${set_properties}endfunction()
${add_tests}endblock()\n")

    file(MAKE_DIRECTORY "${folder}")
    get_property(is_multi_config GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
    if(is_multi_config)
        file(GENERATE OUTPUT "${folder}/tests-$<CONFIG>.cmake" CONTENT "${script}")
        file(WRITE "${folder}/tests.cmake" "block()\n${known}set(unknown_configuration ON)
include(\"${folder}/tests-\${CTEST_CONFIGURATION_TYPE}.cmake\" OPTIONAL RESULT_VARIABLE found)
if(NOT found)\n${add_tests}endif()\nendblock()\n")
    else()
        file(GENERATE OUTPUT "${folder}/tests.cmake" CONTENT "${script}")
    endif()
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${folder}/tests.cmake")
endfunction()
