# The module that the tests of the import redirector load: a driver's exports, nothing of a driver.
if(TARGET unit_bench_imports)
  set(test_module_room ${PROJECT_SOURCE_DIR}/tests/unit/bench_imports/module)
  add_library(bench_imports_module SHARED
    ${test_module_room}/TestModule.cpp ${test_module_room}/TestModule.def)
  set_target_properties(bench_imports_module PROPERTIES
    PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
  # A call that became a jump would seem to come from the caller of its function.
  target_compile_options(bench_imports_module PRIVATE -fno-optimize-sibling-calls)
  target_link_options(bench_imports_module PRIVATE -static)
  target_link_libraries(bench_imports_module PRIVATE
    stelvane_settings advapi32 setupapi ole32 oleaut32)
  foreach(program unit_bench_imports unit_bench_rules)
    add_dependencies(${program} bench_imports_module)
    target_compile_definitions(${program} PRIVATE
      TEST_MODULE="$<TARGET_FILE_NAME:bench_imports_module>")
  endforeach()
endif()
