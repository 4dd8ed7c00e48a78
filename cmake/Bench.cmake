# The benchmarks (tests/bench), one program. They are tested to run; how long they take is no test.
find_package(benchmark REQUIRED)

file(GLOB benchmarks CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/bench/*.cpp)
add_executable(bench ${benchmarks} tests/native/rig/Rig.cpp tests/driver/SensorModem.cpp)
target_include_directories(bench BEFORE PRIVATE ${PROJECT_SOURCE_DIR}/tests/native/rig)
target_link_libraries(bench PRIVATE stelvane_native benchmark::benchmark)

add_test(NAME bench_runs COMMAND bench --benchmark_min_time=0)
# The program's exit code tells nothing of a benchmark that failed.
set_tests_properties(bench_runs PROPERTIES TIMEOUT 120 FAIL_REGULAR_EXPRESSION "ERROR OCCURRED")
