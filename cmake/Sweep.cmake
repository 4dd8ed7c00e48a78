# Lets every call that can fail do so; a part of it is a normal test.
file(GLOB sweep_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/sweep/*.cpp)
add_executable(sweep ${sweep_sources})
target_link_libraries(sweep PRIVATE stelvane_settings bench_all)
set_target_properties(sweep PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
add_dependencies(sweep Stelvane)
add_test(NAME sweep COMMAND sweep --scenario start-stop --scenario supl)
set_tests_properties(sweep PROPERTIES TIMEOUT 300)
