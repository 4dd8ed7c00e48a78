# acceptance.exe: the certification list of a location sensor, run on the shipping DLL.
file(GLOB acceptance_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/acceptance/*.cpp)
set(acceptance_main ${PROJECT_SOURCE_DIR}/tests/acceptance/main.cpp)
list(REMOVE_ITEM acceptance_sources ${acceptance_main})
add_library(acceptance_parts STATIC
  ${acceptance_sources} ${PROJECT_SOURCE_DIR}/workbench/Console.cpp)
target_link_libraries(acceptance_parts PUBLIC stelvane_settings)
set_target_properties(acceptance_parts PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 6)

add_executable(acceptance ${acceptance_main})
target_link_libraries(acceptance PRIVATE acceptance_parts bench_all)
set_target_properties(acceptance PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
add_dependencies(acceptance Stelvane)
add_test(NAME acceptance COMMAND acceptance)
set_tests_properties(acceptance PROPERTIES TIMEOUT 600)

# Its judgements have tests of their own.
if(TARGET unit_acceptance)
  target_link_libraries(unit_acceptance PRIVATE acceptance_parts bench_all)
  target_compile_definitions(unit_acceptance PRIVATE DOCS_FOLDER="${PROJECT_SOURCE_DIR}/docs")
  add_dependencies(unit_acceptance Stelvane)
endif()
