# A room is one folder of src/: a static library that links only the rooms below it.
function(tessaray_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;ROOMS" ${ARGN})
  add_library(tessaray_${name} STATIC ${ROOM_SOURCES})
  target_include_directories(tessaray_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  list(TRANSFORM ROOM_ROOMS PREPEND tessaray_)
  target_link_libraries(tessaray_${name} PUBLIC Qt6::Core ${ROOM_ROOMS} PRIVATE tessaray_compile)
endfunction()
