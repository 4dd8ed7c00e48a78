# The workbench: what stands in for Windows and the modem. One static library a room, so that a
# test of one room builds without the others.
set(bench_rooms clock console framework sensorapi modem imports record rig trace)
set(bench_libraries)
foreach(room IN LISTS bench_rooms)
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/workbench/${room}/*.cpp)
  if(sources)
    add_library(bench_${room} STATIC ${sources})
    target_link_libraries(bench_${room} PUBLIC stelvane_settings)
    # Compiled together: on a fresh clone most of the time goes into the same headers.
    set_target_properties(bench_${room} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 12)
    list(APPEND bench_libraries bench_${room})
  endif()
endforeach()
add_library(bench_all INTERFACE)
target_link_libraries(bench_all INTERFACE
  -static -Wl,--start-group ${bench_libraries} -Wl,--end-group
  advapi32 setupapi ole32 oleaut32 shell32 uuid)

file(GLOB workbench_main CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/workbench/*.cpp)
if(workbench_main)
  add_executable(workbench ${workbench_main})
  target_link_libraries(workbench PRIVATE stelvane_settings bench_all)
  set_target_properties(workbench PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
  add_dependencies(workbench Stelvane)
endif()

# Makes text of a recorded trace; the workbench shows traces with the same code.
add_executable(tracedecode tracedecode/main.cpp)
target_link_libraries(tracedecode PRIVATE stelvane_settings bench_all)
target_link_options(tracedecode PRIVATE -s -Wl,--no-insert-timestamp)
set_target_properties(tracedecode PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
