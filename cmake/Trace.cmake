# The trace headers and trace format files, made by tools/tracegen.py from the message catalogues.
# Whatever includes a trace header links trace_headers.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(tracegen ${PROJECT_SOURCE_DIR}/tools/tracegen.py)

add_library(trace_headers INTERFACE)
target_include_directories(trace_headers INTERFACE ${PROJECT_BINARY_DIR}/trace)

# One run for all catalogues of a set: it also sees what is doubled across them. The sources are
# inputs because a message that no source uses is a mistake.
function(add_trace_catalogues target tmf_dir)
  set(headers)
  set(sources)
  foreach(catalogue IN LISTS ARGN)
    file(RELATIVE_PATH place ${PROJECT_SOURCE_DIR} ${catalogue})
    list(APPEND headers ${PROJECT_BINARY_DIR}/trace/${place}.h)
    string(REGEX REPLACE "\\.trace$" ".cpp" source ${catalogue})
    if(EXISTS ${source})
      list(APPEND sources ${source})
    endif()
  endforeach()
  add_custom_command(
    OUTPUT ${headers}
    COMMAND Python3::Interpreter ${tracegen} --root ${PROJECT_SOURCE_DIR}
      --header-dir ${PROJECT_BINARY_DIR}/trace --tmf-dir ${tmf_dir} ${ARGN}
    DEPENDS ${tracegen} ${ARGN} ${sources}
    COMMENT "Making trace headers"
    VERBATIM)
  add_custom_target(${target} DEPENDS ${headers})
  add_dependencies(trace_headers ${target})
endfunction()

set(trace_catalogues)
foreach(room base at modem sensor driver)
  file(GLOB catalogues CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${room}/*.trace)
  list(APPEND trace_catalogues ${catalogues})
endforeach()
if(trace_catalogues)
  add_trace_catalogues(trace_files ${PROJECT_BINARY_DIR}/tmf ${trace_catalogues})
endif()
# The tests' own messages; their format files are kept apart from the product's.
add_trace_catalogues(trace_test_files ${PROJECT_BINARY_DIR}/tests/tmf
  ${PROJECT_SOURCE_DIR}/tests/unit/trace/TraceTest.trace)

add_test(NAME tracegen COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/tracegen_test.py)
add_test(NAME trace_numbers
  COMMAND ${Python3_EXECUTABLE} ${tracegen}
    --check-numbers ${PROJECT_SOURCE_DIR}/tests/trace_numbers.txt ${trace_catalogues})
set(trace_tests tracegen trace_numbers)
if(WIN32 AND product_sources)
  add_test(NAME trace_texts_absent
    COMMAND ${Python3_EXECUTABLE} ${tracegen}
      --check-absent $<TARGET_FILE:Stelvane> ${trace_catalogues})
  list(APPEND trace_tests trace_texts_absent)
endif()
set_tests_properties(${trace_tests} PROPERTIES LABELS trace)
