# vidora_subsystem_library(name LIBS ...): a static library of every .cpp/.h in the calling
# folder (new files join without editing the list).
function(vidora_subsystem_library name)
  cmake_parse_arguments(L "" "" "LIBS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${L_LIBS})
endfunction()
