# What every target of the project is built with: qix_options(<target>...).

function(qix_options)
    foreach(target IN LISTS ARGN)
        set_target_properties(${target} PROPERTIES
            CXX_STANDARD 17
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
        endif()
    endforeach()
endfunction()
