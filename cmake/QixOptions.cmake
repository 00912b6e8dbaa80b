# What every target of the project is built with: qix_options(<target>...), and what a library of
# the project shows to others: qix_exports(<target>). Where failed checks stand, as they tell it:
# qix_places_below(<folder> <target>).

# Standard libraries before that of g++ 11 cannot write the digits that tell a number from all others.
function(qix_expect_compiler)
    include(CheckCXXSourceCompiles)
    set(CMAKE_CXX_STANDARD 17)
    set(CMAKE_CXX_STANDARD_REQUIRED ON)
    check_cxx_source_compiles("
        #include <charconv>
        int main() { char digits[32]; return std::to_chars(digits, digits + 32, 0.1).ptr == digits; }"
        QIX_HAS_FLOATING_TO_CHARS)
    if(NOT QIX_HAS_FLOATING_TO_CHARS)
        message(FATAL_ERROR "The standard library of ${CMAKE_CXX_COMPILER_ID} "
            "${CMAKE_CXX_COMPILER_VERSION} lacks std::to_chars for floating-point numbers: "
            "qix needs g++ 12 or clang++ 14, or a later one.")
    endif()
endfunction()

function(qix_options)
    set(standard 17)
    if(CMAKE_CXX_STANDARD)
        set(standard "${CMAKE_CXX_STANDARD}")
    endif()
    foreach(target IN LISTS ARGN)
        set_target_properties(${target} PROPERTIES
            CXX_STANDARD ${standard}
            CXX_STANDARD_REQUIRED ON
            CXX_EXTENSIONS OFF
            CXX_VISIBILITY_PRESET hidden
            VISIBILITY_INLINES_HIDDEN ON)
        target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow)
        if(QIX_WERROR)
            target_compile_options(${target} PRIVATE -Werror)
        endif()
        if(QIX_SANITIZE)
            target_compile_options(${target} PRIVATE
                -fsanitize=${QIX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
            target_link_options(${target} PRIVATE -fsanitize=${QIX_SANITIZE})
            # In code that is checked for addresses g++ takes members of std::regex for uninitialised.
            target_compile_options(${target} PRIVATE
                $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
        endif()
    endforeach()
endfunction()

# Shows the names of the namespace that is called as the target is. Visibility alone does not do it:
# it leaves every function template of the standard library in sight whose arguments are visible, and
# those differ from compiler to compiler.
set(qix_exports_template "${CMAKE_CURRENT_LIST_DIR}/exports.map.in")
function(qix_exports target)
    set(map "${CMAKE_CURRENT_BINARY_DIR}/exports.map")
    string(LENGTH "${target}" length)
    set(prefix "${length}${target}")
    configure_file("${qix_exports_template}" "${map}" @ONLY)
    target_link_options(${target} PRIVATE "LINKER:--version-script=${map}")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${map}")
endfunction()

# A failed check names its file as it is called in the folder, wherever that lies. A compiler cache
# may hand the compiler paths that are relative to the folder of the build.
function(qix_places_below folder target)
    file(RELATIVE_PATH relative "${CMAKE_BINARY_DIR}" "${folder}")
    string(REGEX REPLACE "/$" "" relative "${relative}")
    target_compile_options(${target} PRIVATE
        "-fmacro-prefix-map=${folder}/=" "-fmacro-prefix-map=${relative}/=")
endfunction()
