# A second driver, which shows that the framework is not made for the first one alone.
set(echo_room ${PROJECT_SOURCE_DIR}/tests/echo)
add_library(echo_driver SHARED ${echo_room}/EchoDriver.cpp ${echo_room}/EchoDriver.def)
set_target_properties(echo_driver PROPERTIES
  PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
target_link_options(echo_driver PRIVATE -static)
target_link_libraries(echo_driver PRIVATE stelvane_settings)

add_windows_test(echo_tests ${echo_room}/EchoTest.cpp)
add_dependencies(echo_tests echo_driver)
target_compile_definitions(echo_tests PRIVATE ECHO_DRIVER="$<TARGET_FILE_NAME:echo_driver>")
