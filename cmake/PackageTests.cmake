# Checks of what ships beside the driver.
find_program(xmllint xmllint REQUIRED)
set(supl_file ${PROJECT_SOURCE_DIR}/package/StelvaneSUPLInfo-DTD.xml)
add_test(NAME package_supl_file_is_valid COMMAND ${xmllint} --valid --noout ${supl_file})
set_tests_properties(package_supl_file_is_valid PROPERTIES LABELS static)

# One test hands the file that ships to the driver, one reads the table of commands.
if(TARGET driver_modem_tests)
  target_compile_definitions(driver_modem_tests PRIVATE
    PACKAGE_FOLDER="${PROJECT_SOURCE_DIR}/package" DOCS_FOLDER="${PROJECT_SOURCE_DIR}/docs")
endif()

# The INF is read by Windows' own functions for it, out of the package as it was made.
file(GLOB package_test_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/package/*.cpp)
add_windows_test(package_tests ${package_test_sources})
target_compile_definitions(package_tests PRIVATE
  DRIVER_PACKAGE="${PROJECT_BINARY_DIR}/package" PROJECT_VERSION="${PROJECT_VERSION}")

add_test(NAME package_and_signing
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/package/package_test.py
    ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR} ${PROJECT_VERSION})
