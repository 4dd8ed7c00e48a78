# The workbench as a user runs it.
target_compile_definitions(workbench PRIVATE WORKBENCH_VERSION="${PROJECT_VERSION}")

find_package(Python3 REQUIRED COMPONENTS Interpreter)
add_test(NAME cli
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/cli/cli_test.py
    ${PROJECT_SOURCE_DIR}/tools/wine-run $<TARGET_FILE:workbench>)
set_tests_properties(cli PROPERTIES TIMEOUT 300)
add_test(NAME cli_trace
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/cli/trace_test.py
    ${PROJECT_SOURCE_DIR}/tools/wine-run $<TARGET_FILE:workbench> $<TARGET_FILE:tracedecode>
    ${PROJECT_SOURCE_DIR}/docs)
set_tests_properties(cli_trace PROPERTIES TIMEOUT 300)
add_test(NAME framework_rules
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/cli/framework_rules_test.py
    ${PROJECT_SOURCE_DIR})
