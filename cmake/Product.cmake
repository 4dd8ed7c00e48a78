# Stelvane.dll: the driver that ships.
set(product_rooms base at modem sensor driver)
set(product_sources)
foreach(room IN LISTS product_rooms)
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${room}/*.cpp)
  list(APPEND product_sources ${sources})
endforeach()
# Replaces parts of the C++ library, which test programs need whole.
set(dll_only_sources
  ${PROJECT_SOURCE_DIR}/driver/CxxExceptions.cpp ${PROJECT_SOURCE_DIR}/driver/CxxRuntime.cpp)
list(REMOVE_ITEM product_sources ${dll_only_sources})
include(cmake/Trace.cmake)

# Measured code is compiled as it is written, so that each line and branch is there to be taken.
option(STELVANE_COVERAGE "count the lines and branches that tests take" OFF)
if(STELVANE_COVERAGE)
  set(product_options -O0 -fno-inline --coverage -fprofile-update=atomic)
  target_link_options(stelvane_settings INTERFACE --coverage)
else()
  set(product_options -Os -ffunction-sections -fdata-sections)
endif()

if(product_sources)
  # The objects are shared with the unit tests; the DLL adds the export list.
  add_library(product_objects OBJECT ${product_sources})
  target_link_libraries(product_objects PUBLIC stelvane_settings trace_headers)
  target_compile_options(product_objects PRIVATE ${product_options})

  # A library of its own, since windres takes none of the compiler's options.
  configure_file(driver/Stelvane.rc.in ${PROJECT_BINARY_DIR}/resource/Stelvane.rc @ONLY)
  add_library(version_resource OBJECT ${PROJECT_BINARY_DIR}/resource/Stelvane.rc)

  add_library(Stelvane SHARED
    $<TARGET_OBJECTS:product_objects> $<TARGET_OBJECTS:version_resource> ${dll_only_sources}
    driver/Stelvane.def)
  target_link_libraries(Stelvane PRIVATE stelvane_settings)
  target_compile_options(Stelvane PRIVATE ${product_options})
  set_target_properties(Stelvane PROPERTIES
    PREFIX "" LINKER_LANGUAGE CXX RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
  target_link_options(Stelvane PRIVATE
    -static -s -Wl,--gc-sections -Wl,--nxcompat -Wl,--dynamicbase -Wl,--enable-stdcall-fixup
    -Wl,--no-insert-timestamp -Wl,--exclude-all-symbols)
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    target_link_options(Stelvane PRIVATE -Wl,--high-entropy-va)
  endif()
  target_link_libraries(Stelvane PRIVATE advapi32 setupapi ole32 oleaut32)
endif()
