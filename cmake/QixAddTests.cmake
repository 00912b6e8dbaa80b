# Run by CTest: adds the tests of one program, or one that tells why they are not known. The script
# that qix_discover_tests has written sets what is used here in capitals, and cmake, target, folder,
# program, emulator and source_folders.

cmake_policy(VERSION 3.25)

# How long a test may take: three times as long as its class allows. Others have CTest's own limit.
set(limit_short 60)
set(limit_long 540)
set(limit_veryLong 32400)
set(limit_hours 604800)

# Roughly what a test takes. Short ones have none: CTest orders those by what they took last.
set(cost_long 30)
set(cost_veryLong 1800)
set(cost_hours 7200)

# No test can be told from one that passed unless it ends with a status that nothing else has.
set(skip_status 77)

# A test that fails when it is run and prints the reason.
function(qix_add_failing_test reason)
    file(WRITE "${folder}/reason.txt" "${reason}\n")
    set(name "${PREFIX}${target}_NOT_LISTED")
    add_test("${name}" "${cmake}" -E cat "${folder}/reason.txt")
    set_tests_properties("${name}" PROPERTIES WILL_FAIL ON)
endfunction()

# All tests but the interactive ones, whatever their class of duration.
function(qix_list_tests output reason)
    set(had_folder OFF)
    if(DEFINED ENV{QIX_TESTWORKDIR})
        set(had_folder ON)
    endif()
    set(earlier "$ENV{QIX_TESTWORKDIR}")
    set(ENV{QIX_TESTWORKDIR} "${folder}/list")
    set(command ${emulator} "${program}" --list-tests=json +++)
    execute_process(COMMAND ${command}
        WORKING_DIRECTORY "${WORKING_DIRECTORY}" TIMEOUT ${DISCOVERY_TIMEOUT}
        RESULT_VARIABLE result OUTPUT_VARIABLE listing ERROR_VARIABLE errors)
    if(had_folder)
        set(ENV{QIX_TESTWORKDIR} "${earlier}")
    else()
        unset(ENV{QIX_TESTWORKDIR})
    endif()
    list(JOIN command " " command)
    set(head "The tests of ${target} could not be listed by\n  ${command}\nin ${WORKING_DIRECTORY}")
    string(JSON count ERROR_VARIABLE error GET "${listing}" count)
    if(NOT result STREQUAL "0")
        set(${reason} "${head}\nIt ended with: ${result}\n${errors}${listing}" PARENT_SCOPE)
    elseif(error)
        set(${reason} "${head}\nIt is no program with the ready main, which prints one JSON document: \
${error}\n${errors}${listing}" PARENT_SCOPE)
    else()
        set(${reason} "" PARENT_SCOPE)
    endif()
    set(${output} "${listing}" PARENT_SCOPE)
endfunction()

# A folder below which the test works. Its name is ASCII, since the locale of the test may know
# nothing else, and short enough for each file system.
function(qix_folder_of variable id)
    string(REGEX REPLACE "[^A-Za-z0-9_.%#-]" "_" name "${id}")
    string(LENGTH "${name}" length)
    if(length GREATER 100 OR NOT name STREQUAL id)
        string(SUBSTRING "${name}" 0 100 name)
        string(SHA1 hash "${id}")
        string(APPEND name "-${hash}")
    endif()
    set(${variable} "${folder}/run/${name}" PARENT_SCOPE)
endfunction()

# Compilers may have been told to name files relative to one of several folders.
function(qix_find_file variable file)
    set(${variable} "" PARENT_SCOPE)
    if(file STREQUAL "")
        return()
    endif()
    foreach(start IN LISTS source_folders)
        cmake_path(ABSOLUTE_PATH file BASE_DIRECTORY "${start}" NORMALIZE OUTPUT_VARIABLE path)
        if(EXISTS "${path}")
            set(${variable} "${path}" PARENT_SCOPE)
            return()
        endif()
    endforeach()
endfunction()

# \param limit  seconds, or "none"
function(qix_add_test id labels limit cost file line)
    set(name "${PREFIX}${id}")
    qix_folder_of(work_folder "${id}")
    # Only what is in a group that is named passes the filters.
    set(filters "")
    if(PER STREQUAL "group")
        set(filters +++)
    endif()
    add_test("${name}" ${emulator} "${program}" "--run=${id}" ${filters} --skip-status=${skip_status})
    set(more "")
    if(NOT limit STREQUAL "none")
        list(APPEND more TIMEOUT ${limit})
    endif()
    if(cost GREATER 0)
        list(APPEND more COST ${cost})
    endif()
    qix_find_file(path "${file}")
    # What would end a list, or an element of one, cannot be told in this way.
    if(NOT path STREQUAL "" AND NOT path MATCHES "[][;]")
        # The first is for newer versions of CTest, the second for older ones.
        list(APPEND more DEF_SOURCE_LINE "${path}:${line}"
            _BACKTRACE_TRIPLES "${path}\\;${line}\\;QIX_TEST")
    endif()
    # CTest looks through all tests for each of these commands.
    set_tests_properties("${name}" PROPERTIES
        LABELS "${labels}" SKIP_RETURN_CODE ${skip_status}
        WORKING_DIRECTORY "${WORKING_DIRECTORY}"
        ENVIRONMENT_MODIFICATION "QIX_TESTWORKDIR=set:${work_folder}" ${more})
    qix_set_own_properties("${name}")
endfunction()

# Reads one line of the listing: sets id, duration, tags, file and line.
function(qix_read_test text)
    string(REGEX REPLACE ",$" "" text "${text}")
    foreach(key IN ITEMS id duration file line)
        string(JSON ${key} ERROR_VARIABLE error GET "${text}" ${key})
        if(error)
            set(${key} "")
        endif()
        set(${key} "${${key}}" PARENT_SCOPE)
    endforeach()
    set(labels "")
    string(JSON count LENGTH "${text}" tags)
    while(count GREATER 0)
        math(EXPR count "${count} - 1")
        string(JSON tag GET "${text}" tags ${count})
        list(PREPEND labels "${tag}")
    endwhile()
    set(tags "${labels}" PARENT_SCOPE)
endfunction()

# The lines as a list. Its elements are to be restored by qix_restore: brackets and semicolons mean
# something in a list, and control characters do not occur in JSON.
function(qix_split_lines variable text)
    string(ASCII 1 open)
    string(ASCII 2 close)
    string(ASCII 3 semicolon)
    string(REPLACE "[" "${open}" text "${text}")
    string(REPLACE "]" "${close}" text "${text}")
    string(REPLACE ";" "${semicolon}" text "${text}")
    string(REPLACE "\n" ";" text "${text}")
    set(${variable} "${text}" PARENT_SCOPE)
endfunction()

function(qix_restore variable text)
    string(ASCII 1 open)
    string(ASCII 2 close)
    string(ASCII 3 semicolon)
    string(REPLACE "${open}" "[" text "${text}")
    string(REPLACE "${close}" "]" text "${text}")
    string(REPLACE "${semicolon}" ";" text "${text}")
    set(${variable} "${text}" PARENT_SCOPE)
endfunction()

# The tests of a group follow each other.
macro(qix_begin_group)
    set(group "${root}")
    set(group_labels "")
    set(group_limit 0)
    set(group_cost 0)
    set(group_file "")
    set(group_line "")
endmacro()

macro(qix_add_to_group)
    list(APPEND group_labels "${duration}")
    if(NOT tags STREQUAL "")
        string(APPEND group_labels ";${tags}")
    endif()
    if(DEFINED limit_${duration} AND NOT group_limit STREQUAL "none")
        math(EXPR group_limit "${group_limit} + ${limit_${duration}}")
    else()
        set(group_limit none)
    endif()
    if(DEFINED cost_${duration})
        math(EXPR group_cost "${group_cost} + ${cost_${duration}}")
    endif()
    if(group_file STREQUAL "")
        set(group_file "${file}")
        set(group_line "${line}")
    endif()
endmacro()

macro(qix_end_group)
    if(DEFINED group)
        list(REMOVE_DUPLICATES group_labels)
        qix_add_test("${group}" "${group_labels}" "${group_limit}" "${group_cost}"
            "${group_file}" "${group_line}")
    endif()
endmacro()

# Each test is a group of its own unless there is one for each group.
function(qix_add_tests listing)
    file(MAKE_DIRECTORY "${folder}/run")
    qix_split_lines(lines "${listing}")
    set(found 0)
    foreach(element IN LISTS lines)
        if(element MATCHES "^{\"id\":")
            qix_restore(text "${element}")
            qix_read_test("${text}")
            set(root "${id}")
            if(PER STREQUAL "group")
                string(REGEX REPLACE "[.].*" "" root "${id}")
            endif()
            if(NOT "_${root}" STREQUAL "_${group}")
                qix_end_group()
                qix_begin_group()
            endif()
            qix_add_to_group()
            math(EXPR found "${found} + 1")
        endif()
    endforeach()
    qix_end_group()
    string(JSON count GET "${listing}" count)
    if(NOT found EQUAL count)
        qix_add_failing_test("${target} has listed ${count} tests, of which ${found} could be read:\
\n${listing}")
    endif()
endfunction()

if(unknown_configuration)
    qix_add_failing_test("${target} is not built for the configuration \
'${CTEST_CONFIGURATION_TYPE}': tell CTest one by --build-config")
else()
    qix_list_tests(listing reason)
    if(reason STREQUAL "")
        qix_add_tests("${listing}")
    else()
        qix_add_failing_test("${reason}")
    endif()
endif()
