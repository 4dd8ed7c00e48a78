# The native build: the portable sources against a stand-in for the kernel on POSIX threads
# (tests/native), for the sanitizers, the fuzzer, coverage, the benchmarks and the lock annotations.
option(STELVANE_COVERAGE "count the lines and branches that tests take" OFF)
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND NOT STELVANE_COVERAGE)
  message(FATAL_ERROR "The native build needs clang++ (the native-* presets choose it)")
endif()

# What talks to Windows alone: the entry point and the exports, the DLL's replacements of library
# parts, the reader of XML through MSXML (tests/native has one in its place).
set(windows_only_sources
  driver/CxxExceptions.cpp driver/CxxRuntime.cpp driver/DllMain.cpp modem/SuplConfigFile.cpp
  modem/SuplDocument.cpp)
set(skipped_groups acceptance platform bench_imports bench_rules bench_sweep cxx_runtime trace modem
  suplcheck)
# Tests of the whole driver that ask for what only the DLL has: imports that fail, a registry, the
# module itself, a configuration file.
string(JOIN "|" needs_the_dll "[Ff]aults\\(\\)" "Registry\\(\\)" "module\\(\\)"
  systemRoot "SuplTest\\.h" TraceOptions)
# Tests that run on one thread say nothing to ThreadSanitizer.
if(STELVANE_SANITIZE MATCHES "thread")
  list(APPEND skipped_groups at_parsers bench_modem bench_record bench_sensorapi bench_trace)
endif()
set(native_bench_rooms clock framework sensorapi modem record trace)

# Everything is compiled alike, GoogleTest too: half a sanitized program reports what is not there.
add_compile_options(-fshort-wchar)
add_compile_definitions(GTEST_HAS_STD_WSTRING=0)
if(STELVANE_COVERAGE)
  add_compile_options(-O0 -fno-inline --coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
if(STELVANE_SANITIZE)
  set(sanitizers -fsanitize=${STELVANE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_compile_options(${sanitizers})
  add_link_options(${sanitizers})
endif()
if(STELVANE_FUZZ)
  add_compile_options(-D_GLIBCXX_ASSERTIONS)
  # The targets need the workbench's clock and its tracing only.
  set(native_bench_rooms clock)
endif()

# Clang 14 does not see that the library's strings are initialised constantly; the Windows build
# checks that they are.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 15)
  target_compile_definitions(stelvane_settings INTERFACE constinit=)
endif()

find_package(Threads REQUIRED)
target_include_directories(stelvane_settings INTERFACE ${PROJECT_SOURCE_DIR}/tests/native/include)
target_compile_options(stelvane_settings INTERFACE
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety;-Werror=thread-safety>)
target_link_libraries(stelvane_settings INTERFACE Threads::Threads)
include(cmake/Trace.cmake)

# The sources of the rooms named, as far as they are portable.
function(portable_sources result)
  set(found)
  foreach(room IN LISTS ARGN)
    file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${room}/*.cpp)
    list(APPEND found ${sources})
  endforeach()
  foreach(source IN LISTS windows_only_sources)
    list(REMOVE_ITEM found ${PROJECT_SOURCE_DIR}/${source})
  endforeach()
  set(${result} ${found} PARENT_SCOPE)
endfunction()

# The stand-in and its tests lie side by side.
file(GLOB stand_in_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/native/*.cpp)
set(native_tests ${stand_in_sources})
list(FILTER native_tests INCLUDE REGEX "Test\\.cpp$")
list(FILTER stand_in_sources EXCLUDE REGEX "Test\\.cpp$")
portable_sources(product_sources base at modem sensor driver)
list(TRANSFORM native_bench_rooms PREPEND workbench/)
portable_sources(bench_sources ${native_bench_rooms})
list(APPEND bench_sources ${PROJECT_SOURCE_DIR}/workbench/imports/TraceSession.cpp)

# The libraries refer to each other: the workbench to the product's declarations and to the
# kernel, the stand-in to the workbench's clock.
add_library(native_kernel STATIC ${stand_in_sources})
add_library(stelvane_native STATIC ${product_sources})
add_library(bench_native STATIC ${bench_sources})
foreach(library native_kernel stelvane_native bench_native)
  target_link_libraries(${library} PUBLIC stelvane_settings trace_headers)
endforeach()
set_target_properties(bench_native PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 12)
target_link_libraries(stelvane_native PUBLIC native_kernel)
target_link_libraries(native_kernel PUBLIC bench_native)
target_link_libraries(bench_native PUBLIC native_kernel)

set(sanitizer_options "UBSAN_OPTIONS=print_stacktrace=1;TSAN_OPTIONS=halt_on_error=1")
if(STELVANE_SANITIZE MATCHES "address")
  include(cmake/Fuzz.cmake)
endif()
if(STELVANE_BENCH)
  include(cmake/Bench.cmake)
endif()
if(STELVANE_FUZZ OR STELVANE_BENCH)
  return()  # the tests run in the other presets
endif()

set(BUILD_GMOCK ON)
set(INSTALL_GTEST OFF)
add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)

# Tests write numbers for the platform's 32-bit long; the Windows build checks them as such.
add_library(windows_long INTERFACE)
target_compile_options(windows_long INTERFACE
  $<$<CXX_COMPILER_ID:GNU>:-Wno-conversion>
  -Wno-shorten-64-to-32 -Wno-constant-conversion -Wno-c++11-narrowing)
function(add_native_program name library)
  add_executable(${name} ${ARGN})
  # Compiled together, as the workbench is: most of the time goes into the same headers. So names
  # in the unnamed namespaces of one program differ.
  set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 6)
  target_link_libraries(${name} PRIVATE ${library} gmock_main gtest gmock windows_long)
  if(STELVANE_SANITIZE MATCHES "thread")
    # The C++ linker would bring an operator new that no test may replace; malloc is watched alike.
    set_target_properties(${name} PROPERTIES LINKER_LANGUAGE C)
  endif()
endfunction()

function(add_native_test name library)
  add_native_program(${name} ${library} ${ARGN})
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 600 ENVIRONMENT "${sanitizer_options}")
endfunction()

add_native_test(native_tests native_kernel ${native_tests})
file(GLOB groups CONFIGURE_DEPENDS LIST_DIRECTORIES true ${PROJECT_SOURCE_DIR}/tests/unit/*)
foreach(group IN LISTS groups)
  get_filename_component(group_name ${group} NAME)
  portable_sources(sources tests/unit/${group_name})
  if(sources AND NOT group_name IN_LIST skipped_groups)
    add_native_test(unit_${group_name} stelvane_native ${sources})
  endif()
endforeach()

# The tests of the whole driver, on a rig around its sources in place of the DLL. Each runs in a
# process of its own: what the module keeps between devices is fresh there, as after a load.
portable_sources(driver_tests tests/driver tests/native/rig)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${driver_tests})
foreach(source IN LISTS driver_tests)
  file(STRINGS ${source} uses REGEX ${needs_the_dll})
  if(uses)
    list(REMOVE_ITEM driver_tests ${source})
  endif()
endforeach()
add_native_program(driver_tests stelvane_native ${driver_tests})
target_include_directories(driver_tests BEFORE PRIVATE ${PROJECT_SOURCE_DIR}/tests/native/rig)
target_precompile_headers(driver_tests PRIVATE tests/driver/RigTest.h)
include(GoogleTest)
gtest_discover_tests(driver_tests DISCOVERY_MODE PRE_TEST TEST_PREFIX driver_tests.
  PROPERTIES TIMEOUT 600 ENVIRONMENT "${sanitizer_options}")
