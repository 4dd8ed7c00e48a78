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
