# Tests that run as Windows programs under Wine. tests/unit/<group>/ is one program per group;
# tests/driver/ drives the shipping DLL through its exports.
set(BUILD_GMOCK ON)
set(INSTALL_GTEST OFF)
add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)

# A test program and its one entry in CTest; the program prints its own cases.
function(add_windows_test name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE stelvane_settings bench_all gmock_main gtest gmock)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
  # Compiled together: on a fresh clone most of the time goes into the same headers. So names in the
  # unnamed namespaces of one program differ.
  set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 6)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 600)
endfunction()

file(GLOB groups CONFIGURE_DEPENDS LIST_DIRECTORIES true ${PROJECT_SOURCE_DIR}/tests/unit/*)
foreach(group IN LISTS groups)
  file(GLOB sources CONFIGURE_DEPENDS ${group}/*.cpp)
  if(sources)
    get_filename_component(group_name ${group} NAME)
    add_windows_test(unit_${group_name} ${sources})
    if(TARGET product_objects AND NOT group_name MATCHES "^bench_")
      target_link_libraries(unit_${group_name} PRIVATE product_objects trace_headers)
      target_sources(unit_${group_name} PRIVATE $<TARGET_OBJECTS:product_objects>)
    endif()
  endif()
endforeach()
if(STELVANE_COVERAGE)
  # It holds the sources that only the DLL has.
  target_compile_options(unit_cxx_runtime PRIVATE ${product_options})
endif()
include(cmake/BenchImportsTest.cmake OPTIONAL)
include(cmake/EchoTest.cmake)

# The DLL's tests are one program per room that they look at; names begin with what they test.
function(add_driver_tests name)
  list(TRANSFORM ARGN PREPEND ${PROJECT_SOURCE_DIR}/tests/driver/)
  file(GLOB sources CONFIGURE_DEPENDS ${ARGN})
  if(sources)
    add_windows_test(${name} ${sources})
    add_dependencies(${name} Stelvane)
  endif()
endfunction()
add_driver_tests(driver_host_tests Road*.cpp Module*.cpp Device*.cpp Queue*.cpp SensorFace.cpp)
add_driver_tests(driver_sensor_tests Sensor*.cpp)
add_driver_tests(driver_modem_tests At*.cpp Modem*.cpp Supl*.cpp)
