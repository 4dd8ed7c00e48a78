# Checks of the built driver that read the file and run nothing, one test a rule. They are all that
# can be said of the 32-bit build here.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(machine x64)
else()
  set(machine x86)
endif()

set(dll_rules
  machine exports version-record version-resource import-dlls import-functions driver-imports
  no-execute address-randomisation relocations entry-point subsystem-version size stripped
  build-paths)
if(TARGET Stelvane)
  foreach(rule IN LISTS dll_rules)
    add_test(NAME dll_${rule}
      COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/check-dll $<TARGET_FILE:Stelvane>
        --rule ${rule} --machine ${machine}
        --imports ${PROJECT_SOURCE_DIR}/tools/windows8-imports.txt
        --project-version ${PROJECT_VERSION}
        --nm ${CMAKE_NM} --objects $<TARGET_OBJECTS:product_objects>
        --folders ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}
      COMMAND_EXPAND_LISTS)
    list(APPEND dll_tests dll_${rule})
  endforeach()
endif()

# The checker itself is tested on small DLLs that break the rules on purpose.
add_test(NAME check_dll_catches_breaches
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/check_dll_test.py
    ${machine} ${CMAKE_CXX_COMPILER} ${CMAKE_NM} ${CMAKE_RC_COMPILER})
if(machine STREQUAL x64)
  add_test(NAME small_tools COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/tools_test.py)
endif()
set_tests_properties(${dll_tests} check_dll_catches_breaches PROPERTIES LABELS static)
