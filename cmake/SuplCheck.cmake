# suplcheck.exe: checks a SUPL configuration file with the driver's own reader. It ships.
file(GLOB suplcheck_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/suplcheck/*.cpp)
set(suplcheck_main ${PROJECT_SOURCE_DIR}/suplcheck/main.cpp)
list(REMOVE_ITEM suplcheck_sources ${suplcheck_main})
add_library(suplcheck_parts STATIC ${suplcheck_sources})
target_link_libraries(suplcheck_parts PUBLIC stelvane_settings shlwapi)

# As an archive, so that the program takes only what it needs of the driver.
add_library(product_archive STATIC $<TARGET_OBJECTS:product_objects>)
set_target_properties(product_archive PROPERTIES LINKER_LANGUAGE CXX)
add_executable(suplcheck ${suplcheck_main})
target_link_libraries(suplcheck PRIVATE
  suplcheck_parts product_archive stelvane_settings advapi32 setupapi ole32 oleaut32)
target_compile_options(suplcheck_parts PRIVATE -Os -ffunction-sections -fdata-sections)
target_compile_options(suplcheck PRIVATE -Os -ffunction-sections -fdata-sections)
set_target_properties(suplcheck PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
target_link_options(suplcheck PRIVATE
  -municode -static -s -Wl,--gc-sections -Wl,--nxcompat -Wl,--dynamicbase -Wl,--high-entropy-va
  -Wl,--no-insert-timestamp)

if(TARGET unit_suplcheck)
  target_link_libraries(unit_suplcheck PRIVATE suplcheck_parts)
endif()
foreach(test IN ITEMS suplcheck suplcheck_findings)
  add_test(NAME ${test}
    COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/cli/${test}_test.py
      ${PROJECT_SOURCE_DIR}/tools/wine-run $<TARGET_FILE:suplcheck> $<TARGET_FILE:workbench>)
  set_tests_properties(${test} PROPERTIES TIMEOUT 300)
endforeach()
