# bin/assembly and its libraries in lib/, the same shape as in the build folder, movable as a whole.

foreach(target IN ITEMS assembly_tool pcore assembly exchange step_importer step_kernel gltf_importer)
    if(TARGET ${target})
        set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/../lib")
        install(TARGETS ${target} RUNTIME DESTINATION bin LIBRARY DESTINATION lib)
    endif()
endforeach()
