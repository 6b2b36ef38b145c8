# The warnings and sanitizers that every target of the tree is built with; warnings are errors only
# where that is asked for.
add_library(encap_warnings INTERFACE)
if(MSVC)
    target_compile_options(encap_warnings INTERFACE /W4 /utf-8 /permissive-)
    if(ENCAP_WERROR)
        target_compile_options(encap_warnings INTERFACE /WX)
    endif()
else()
    target_compile_options(encap_warnings INTERFACE
        -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
    if(ENCAP_WERROR)
        target_compile_options(encap_warnings INTERFACE -Werror)
    endif()
endif()

if(ENCAP_SANITIZE)
    target_compile_options(encap_warnings INTERFACE
        -fsanitize=${ENCAP_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(encap_warnings INTERFACE -fsanitize=${ENCAP_SANITIZE})
endif()
