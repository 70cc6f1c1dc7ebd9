# vidora_subsystem_library(name [OBJECT] LIBS ... [SOURCES ...]): a library of every .cpp/.h in
# the calling folder (new files join without editing a list) except main.cpp, which is the
# folder's program. OBJECT makes an object library; SOURCES adds generated files.
function(vidora_subsystem_library name)
  cmake_parse_arguments(L "OBJECT" "" "LIBS;SOURCES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  list(REMOVE_ITEM sources ${CMAKE_CURRENT_SOURCE_DIR}/main.cpp)
  if(L_OBJECT)
    add_library(${name} OBJECT ${sources} ${L_SOURCES})
  else()
    add_library(${name} STATIC ${sources} ${L_SOURCES})
  endif()
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${L_LIBS})
endfunction()
