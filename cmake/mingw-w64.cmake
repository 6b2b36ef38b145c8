# Cross-build for 64-bit Windows with mingw-w64 (posix threads). The libraries come from
# scripts/windows-deps: from $ENCAP_WINDOWS_DEPS, else from build/windows-deps in the tree.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

if(DEFINED ENV{ENCAP_WINDOWS_DEPS})
    set(ENCAP_WINDOWS_DEPS "$ENV{ENCAP_WINDOWS_DEPS}")
else()
    get_filename_component(ENCAP_WINDOWS_DEPS "${CMAKE_CURRENT_LIST_DIR}/../build/windows-deps"
                           ABSOLUTE)
endif()

# Libraries, headers and packages of this machine are none of the target's; programs are.
set(CMAKE_FIND_ROOT_PATH "${ENCAP_WINDOWS_DEPS}/prefix" /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# GCC 12 takes copies within wide strings that it has inlined for overlapping ones.
set(CMAKE_CXX_FLAGS_INIT "-Wno-restrict")

# Programs need no library of the compiler's beside them.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
