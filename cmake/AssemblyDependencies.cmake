# Libraries from the distribution. The module itself uses none of them.

find_package(Threads REQUIRED)
find_package(fmt REQUIRED)
find_package(pugixml REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(CLI11 REQUIRED)
find_package(simdjson REQUIRED)
find_package(meshoptimizer REQUIRED)
find_package(PNG REQUIRED)

find_package(PkgConfig REQUIRED)
pkg_check_modules(zstd REQUIRED IMPORTED_TARGET libzstd)
pkg_check_modules(xxhash REQUIRED IMPORTED_TARGET libxxhash)
pkg_check_modules(draco REQUIRED IMPORTED_TARGET draco)

if(ASSEMBLY_TESTS)
    find_package(GTest REQUIRED)
endif()
if(ASSEMBLY_BENCHMARKS)
    find_package(benchmark REQUIRED)
    find_package(TinyGLTF REQUIRED)
endif()

# Open CASCADE's own package file pulls in its viewers, so its libraries are found one by one.
find_path(OCCT_INCLUDE_DIR Standard_Version.hxx PATH_SUFFIXES opencascade REQUIRED)
set(occt_toolkits
    TKXDESTEP TKSTEP TKSTEP209 TKSTEPAttr TKSTEPBase TKXSBase
    TKXCAF TKVCAF TKLCAF TKCAF TKCDF
    TKMesh TKShHealing TKTopAlgo TKGeomAlgo TKBRep TKGeomBase TKG3d TKG2d TKMath TKernel)
add_library(occt_step INTERFACE)
target_include_directories(occt_step SYSTEM INTERFACE "${OCCT_INCLUDE_DIR}")
foreach(toolkit IN LISTS occt_toolkits)
    find_library(OCCT_${toolkit} ${toolkit} REQUIRED)
    mark_as_advanced(OCCT_${toolkit})
    target_link_libraries(occt_step INTERFACE "${OCCT_${toolkit}}")
endforeach()
target_link_options(occt_step INTERFACE "LINKER:--as-needed")
