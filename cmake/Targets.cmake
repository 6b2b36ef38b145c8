# What the folders of the tree declare their targets with.

# Headers that CMake writes stand here, under their include path.
set(ENCAP_GENERATED_DIR "${PROJECT_BINARY_DIR}/generated")

# The platform's objects, for libraries beside a shared encap, which hides them. Those left out hold
# what the library and its host share (hooks and handles): there must be one of each in a process,
# and encap exports them.
set(ENCAP_PLATFORM_OBJECTS
    "$<FILTER:$<TARGET_OBJECTS:encap_platform>,EXCLUDE,/(Clipboard|IconHandles|MessageBox)[.]cpp>")

# encap_add_layer(<name> SOURCES <files> [LIBS <targets>])
# One layer of the library as an object library encap_<name>: the library is put together from the
# layers' objects, and tests link them directly, so that they reach what a shared build hides.
function(encap_add_layer name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
    if(NOT ARG_SOURCES)
        return()
    endif()
    set(target encap_${name})
    add_library(${target} OBJECT ${ARG_SOURCES})
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_include_directories(${target} PUBLIC "${PROJECT_SOURCE_DIR}" "${ENCAP_GENERATED_DIR}")
    target_compile_definitions(${target} PRIVATE ENCAP_BUILDING)
    if(NOT BUILD_SHARED_LIBS)
        target_compile_definitions(${target} PUBLIC ENCAP_STATIC)
    endif()
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON)
    target_link_libraries(${target} PRIVATE encap_warnings ${ARG_LIBS})
endfunction()

# encap_public_headers(<target> HEADERS <headers> [GENERATED <headers>])
# The headers that are installed with a library, as they are included.
function(encap_public_headers target)
    cmake_parse_arguments(ARG "" "" "HEADERS;GENERATED" ${ARGN})
    list(TRANSFORM ARG_HEADERS PREPEND "${PROJECT_SOURCE_DIR}/")
    target_sources(${target} PUBLIC
        FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}" FILES ${ARG_HEADERS})
    if(ARG_GENERATED)
        list(TRANSFORM ARG_GENERATED PREPEND "${ENCAP_GENERATED_DIR}/")
        target_sources(${target} PUBLIC
            FILE_SET generated_headers TYPE HEADERS
            BASE_DIRS "${ENCAP_GENERATED_DIR}" FILES ${ARG_GENERATED})
    endif()
    set_target_properties(${target} PROPERTIES
        VERIFY_INTERFACE_HEADER_SETS ${PROJECT_IS_TOP_LEVEL})
endfunction()

# encap_add_test(<name> SOURCES <files> LAYERS <layers> [LIBS <targets>] [LABEL <label>])
# One test program encap_<name>_tests over the objects of the layers it names. Its tests carry the
# label, by default the name; those labelled "threads" are run under the thread sanitizer.
function(encap_add_test name)
    cmake_parse_arguments(ARG "" "LABEL" "SOURCES;LAYERS;LIBS" ${ARGN})
    if(NOT ARG_LABEL)
        set(ARG_LABEL ${name})
    endif()
    set(target encap_${name}_tests)
    add_executable(${target} ${ARG_SOURCES})
    target_compile_features(${target} PRIVATE cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}" "${ENCAP_GENERATED_DIR}")
    target_compile_definitions(${target} PRIVATE
        ENCAP_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data"
        ENCAP_SAMPLES="${PROJECT_SOURCE_DIR}/samples")
    set(layers ${ARG_LAYERS})
    list(TRANSFORM layers PREPEND encap_)
    foreach(layer IN LISTS layers)
        target_link_libraries(${target} PRIVATE ${layer})
    endforeach()
    target_link_libraries(${target} PRIVATE encap_warnings ${ENCAP_THIRD_PARTY} ${ARG_LIBS}
                          GTest::gtest GTest::gmock GTest::gtest_main Threads::Threads)
    if(CMAKE_CROSSCOMPILING)
        # The program cannot be asked for its tests here; scripts/test-windows runs it.
        set_property(GLOBAL APPEND PROPERTY ENCAP_TEST_PROGRAMS ${target})
    else()
        gtest_discover_tests(${target} DISCOVERY_TIMEOUT 60
                             PROPERTIES TIMEOUT 300 LABELS ${ARG_LABEL})
    endif()
    if(ARG_LABEL STREQUAL "threads")
        set_property(GLOBAL APPEND PROPERTY ENCAP_THREAD_TESTS ${target})
    endif()
endfunction()

# encap_add_fuzzer(<name> SOURCES <files> LAYERS <layers> [LIBS <targets>])
# One libFuzzer program fuzzers/<name> in the build folder; its seeds stand in fuzz/corpus/<name>.
function(encap_add_fuzzer name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LAYERS;LIBS" ${ARGN})
    set(target encap_${name}_fuzzer)
    add_executable(${target} ${ARG_SOURCES})
    target_compile_features(${target} PRIVATE cxx_std_20)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        OUTPUT_NAME ${name}
        RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/fuzzers")
    target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}" "${ENCAP_GENERATED_DIR}")
    foreach(layer IN LISTS ARG_LAYERS)
        target_link_libraries(${target} PRIVATE encap_${layer})
    endforeach()
    target_link_libraries(${target} PRIVATE encap_warnings ${ENCAP_THIRD_PARTY} ${ARG_LIBS})
    target_link_options(${target} PRIVATE -fsanitize=fuzzer)
endfunction()
