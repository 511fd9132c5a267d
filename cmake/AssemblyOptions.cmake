# Build options, and the flags that every target shares.

option(ASSEMBLY_TESTS "Build the test programs" ON)
option(ASSEMBLY_BENCHMARKS "Build the benchmark program" ON)
option(ASSEMBLY_FUZZ "Build libFuzzer targets (clang only)" OFF)
option(ASSEMBLY_COVERAGE "Instrument for line coverage" OFF)
option(ASSEMBLY_WERROR "Treat warnings as errors" ON)
option(ASSEMBLY_TEST_PCH "Precompile what every test includes" ON)
option(ASSEMBLY_CCACHE "Compile through ccache where it is installed" ON)
set(ASSEMBLY_SANITIZE "" CACHE STRING "Sanitizers for -fsanitize=, separated by commas; empty for none")
set(ASSEMBLY_DATA_DIR "${PROJECT_SOURCE_DIR}/../shared/data" CACHE PATH
    "Real files for the tests; the environment variable of the same name wins at run time")
cmake_path(NORMAL_PATH ASSEMBLY_DATA_DIR)

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_LINK_DEPENDS_NO_SHARED ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

add_compile_options(-Wall -Wextra -Wextra-semi -fdiagnostics-color=auto)
if(ASSEMBLY_WERROR)
    add_compile_options(-Werror)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # Overloads of a base that stay reachable through it are usual here; g++ does not warn either.
    add_compile_options(-Wno-overloaded-virtual)
endif()

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # These guess wrong on joined std::string values in this compiler's optimised builds.
    add_compile_options(-Wno-array-bounds -Wno-restrict -Wno-stringop-overflow)
endif()

if(ASSEMBLY_SANITIZE)
    add_compile_options(-fsanitize=${ASSEMBLY_SANITIZE} -fno-omit-frame-pointer
                        -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${ASSEMBLY_SANITIZE})
    add_compile_definitions(ASSEMBLY_SANITIZERS=1)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # These only guess, and guess wrong on instrumented code.
        add_compile_options(-Wno-maybe-uninitialized)
    endif()
endif()
if(ASSEMBLY_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "ASSEMBLY_FUZZ needs clang")
    endif()
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(ASSEMBLY_COVERAGE)
    add_compile_options(--coverage -fprofile-update=atomic)
    add_link_options(--coverage)
endif()

if(ASSEMBLY_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    find_program(ASSEMBLY_CCACHE_PROGRAM ccache)
    if(ASSEMBLY_CCACHE_PROGRAM)
        # Precompiled headers are cached only when their dates do not count.
        set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env
            "CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime"
            "${ASSEMBLY_CCACHE_PROGRAM}")
    endif()
endif()

# Read by programs under a sanitizer, without effect elsewhere.
set(ASSEMBLY_LSAN_OPTIONS
    "suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0")

# For folders whose code waits for others: their headers are large, and optimising what the sanitizers make of
# them is half of that build's time.
macro(assembly_builds_fast_under_sanitizers)
    if(ASSEMBLY_SANITIZE)
        add_compile_options(-O0)
    endif()
endmacro()
