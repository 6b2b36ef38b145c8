# Installs the build into an empty prefix: cmake -D build=... -D prefix=... -D config=... -P
file(REMOVE_RECURSE "${prefix}")
execute_process(
    COMMAND "${CMAKE_COMMAND}" --install "${build}" --prefix "${prefix}" --config "${config}"
    COMMAND_ERROR_IS_FATAL ANY)

# What is left of an include in an installed header must be installed too, or be a standard header.
file(GLOB_RECURSE headers RELATIVE "${prefix}/include" "${prefix}/include/*.h")
if(NOT headers)
    message(FATAL_ERROR "no header was installed")
endif()
foreach(header IN LISTS headers)
    file(STRINGS "${prefix}/include/${header}" lines REGEX "^ *# *include")
    foreach(line IN LISTS lines)
        string(REGEX REPLACE ".*[<\"]([^>\"]+)[>\"].*" "\\1" included "${line}")
        if(included MATCHES "^[a-z_]+$" OR EXISTS "${prefix}/include/${included}")
            continue()
        endif()
        message(SEND_ERROR "${header} includes ${included}, which is not installed")
    endforeach()
endforeach()
