# soak.exe: the driver in a random world (docs/soak.md). The short run is a test; the long one is
# started by hand.
file(GLOB soak_sources CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/tests/soak/*.cpp ${PROJECT_SOURCE_DIR}/tests/soak/rules/*.cpp)
set(soak_main ${PROJECT_SOURCE_DIR}/tests/soak/main.cpp)
list(REMOVE_ITEM soak_sources ${soak_main})
add_library(soak_parts STATIC ${soak_sources})
target_link_libraries(soak_parts PUBLIC stelvane_settings)
set_target_properties(soak_parts PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 6)
add_executable(soak ${soak_main})
target_link_libraries(soak PRIVATE soak_parts stelvane_settings bench_all)
set_target_properties(soak PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
add_dependencies(soak Stelvane)
add_test(NAME soak COMMAND soak --seeds 6 --hours 2)
set_tests_properties(soak PROPERTIES TIMEOUT 300)

file(GLOB soak_tests CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/soak/tests/*.cpp)
if(soak_tests)
  add_windows_test(soak_rules ${soak_tests})
  target_link_libraries(soak_rules PRIVATE soak_parts)
endif()
