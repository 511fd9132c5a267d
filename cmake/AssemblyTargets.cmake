# The kinds of target that the project is made of. All of them skip folders without sources, and
# look again at their folder on every build, so that a new file needs no edit here.

include(GoogleTest)

# assembly_sources(OUT PATTERN...): sources of the calling folder.
function(assembly_sources out)
    list(TRANSFORM ARGN PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
    file(GLOB sources CONFIGURE_DEPENDS ${ARGN})
    set(${out} "${sources}" PARENT_SCOPE)
endfunction()

# assembly_sources_below(OUT PATTERN...): the same, sub-folders included.
function(assembly_sources_below out)
    list(TRANSFORM ARGN PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${ARGN})
    set(${out} "${sources}" PARENT_SCOPE)
endfunction()

# assembly_link_existing(TARGET SCOPE LIBRARY...): links those of the libraries that have sources.
function(assembly_link_existing target scope)
    foreach(library IN LISTS ARGN)
        if(TARGET ${library})
            target_link_libraries(${target} ${scope} ${library})
        endif()
    endforeach()
endfunction()

# assembly_layer(NAME SOURCES file... MAY_USE layer...)
# One layer of the module: the static library assembly_NAME. Everything is hidden, and only the
# named layers, the contract and the engine's library can be linked.
function(assembly_layer name)
    cmake_parse_arguments(PARSE_ARGV 1 layer "" "" "SOURCES;MAY_USE")
    if(NOT layer_SOURCES)
        return()
    endif()
    set(target assembly_${name})
    add_library(${target} STATIC ${layer_SOURCES})
    set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden)
    list(TRANSFORM layer_MAY_USE PREPEND assembly_)
    assembly_link_existing(${target} PUBLIC ${layer_MAY_USE} pcore contract)
endfunction()

# assembly_module(NAME [MAP]): properties of a library that is loaded at run time. MAP names its exports;
# the engine's entry function without it.
function(assembly_module target)
    set_target_properties(${target} PROPERTIES PREFIX "" CXX_VISIBILITY_PRESET hidden)
    set(exports "${PROJECT_SOURCE_DIR}/cmake/exports.map")
    if(ARGC GREATER 1)
        set(exports "${ARGV1}")
    endif()
    target_link_options(${target} PRIVATE "LINKER:--version-script=${exports}")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${exports}")
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # clang leaves the sanitizer's own symbols to the program that loads the module.
        target_link_options(${target} PRIVATE "LINKER:-z,defs")
    endif()
endfunction()

# What tests, benchmarks and replays know of the build: folders, never single files.
function(assembly_knows_build target)
    target_compile_definitions(${target} PRIVATE
        ASSEMBLY_BIN_DIR="${CMAKE_RUNTIME_OUTPUT_DIRECTORY}"
        ASSEMBLY_LIB_DIR="${CMAKE_LIBRARY_OUTPUT_DIRECTORY}"
        ASSEMBLY_TOOL="${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/assembly"
        ASSEMBLY_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
        ASSEMBLY_SAMPLES_DIR="${PROJECT_SOURCE_DIR}/samples"
        ASSEMBLY_DATA_DIR="${ASSEMBLY_DATA_DIR}")
endfunction()

# assembly_tests(NAME LIBRARY...)
# The program NAME_tests from tests/NAME/**/*_test.cpp and the helpers beside them. Each of its tests
# is one CTest test.
function(assembly_tests name)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp")
    if(NOT sources)
        return()
    endif()
    set(target ${name}_tests)
    add_executable(${target} ${sources})
    assembly_knows_build(${target})
    target_link_libraries(${target} PRIVATE test_support)
    assembly_link_existing(${target} PRIVATE ${ARGN} pcore)
    target_link_libraries(${target} PRIVATE contract GTest::gmock GTest::gtest_main Threads::Threads)
    if(TARGET test_pch)
        target_precompile_headers(${target} REUSE_FROM test_pch)
    endif()
    # The loaded modules and the tool are run, not linked; only these programs do so.
    if(name MATCHES "^(frame|importers|roads|tool)$")
        foreach(loaded IN ITEMS assembly exchange step_importer gltf_importer assembly_tool make_samples)
            if(TARGET ${loaded})
                add_dependencies(${target} ${loaded})
            endif()
        endforeach()
    endif()
    # Most tests take less than the start of an instrumented process, so there a program is one test. Those
    # that read real files stay apart: they share both cores better, and tell what failed.
    if(ASSEMBLY_SANITIZE AND NOT name MATCHES "^(importers|roads|tool)$")
        add_test(NAME ${name}.all COMMAND ${target} --gtest_brief=1 WORKING_DIRECTORY "${PROJECT_BINARY_DIR}")
        set_tests_properties(${name}.all PROPERTIES
            LABELS "${name}" ENVIRONMENT "LSAN_OPTIONS=${ASSEMBLY_LSAN_OPTIONS}")
        return()
    endif()
    gtest_discover_tests(${target}
        TEST_PREFIX "${name}."
        WORKING_DIRECTORY "${PROJECT_BINARY_DIR}"
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 60
        PROPERTIES LABELS "${name}" ENVIRONMENT "LSAN_OPTIONS=${ASSEMBLY_LSAN_OPTIONS}")
endfunction()
