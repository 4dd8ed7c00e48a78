# Lets every call that can fail do so; a part of it is a normal test.
file(GLOB sweep_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/sweep/*.cpp)
set(sweep_main ${PROJECT_SOURCE_DIR}/tests/sweep/main.cpp)
list(REMOVE_ITEM sweep_sources ${sweep_main})
add_library(sweep_parts STATIC ${sweep_sources})
target_link_libraries(sweep_parts PUBLIC stelvane_settings)
add_executable(sweep ${sweep_main})
target_link_libraries(sweep PRIVATE sweep_parts stelvane_settings bench_all)
set_target_properties(sweep PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
add_dependencies(sweep Stelvane)
add_test(NAME sweep COMMAND sweep --scenario start-stop --scenario supl)
set_tests_properties(sweep PROPERTIES TIMEOUT 300)

# Its judgements have tests of their own.
if(TARGET unit_bench_sweep)
  target_link_libraries(unit_bench_sweep PRIVATE sweep_parts bench_all)
  add_dependencies(unit_bench_sweep Stelvane)
endif()
