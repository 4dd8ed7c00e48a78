# The fuzz targets (tests/fuzz), one program each: with libFuzzer in the preset native-fuzz; in
# native-asan they run once over their seeds and over what was found before, as plain tests.
add_library(fuzz_references STATIC
  tests/fuzz/FixComparison.cpp tests/fuzz/LeadTimeReference.cpp tests/fuzz/NumberReference.cpp
  tests/fuzz/ProfileReference.cpp tests/fuzz/PropertyBag.cpp tests/fuzz/PropertyReference.cpp
  tests/fuzz/ReportReference.cpp)
target_link_libraries(fuzz_references PUBLIC stelvane_native)
if(STELVANE_FUZZ)
  # The driver leads the fuzzer, not what it is compared with.
  target_compile_options(stelvane_native PRIVATE -fsanitize=fuzzer-no-link)
endif()

function(add_fuzz_target name)
  set(program fuzz_${name})
  add_executable(${program} ${ARGN})
  target_link_libraries(${program} PRIVATE fuzz_references stelvane_native)
  if(STELVANE_FUZZ)
    # The driver's templates are compiled with the target.
    target_compile_options(${program} PRIVATE -fsanitize=fuzzer-no-link)
    target_link_options(${program} PRIVATE -fsanitize=fuzzer)
    return()
  endif()
  target_sources(${program} PRIVATE tests/fuzz/ReplayMain.cpp)
  file(GLOB found CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/regressions/${name}/*)
  add_test(NAME ${program}
    COMMAND ${program} ${PROJECT_SOURCE_DIR}/tests/fuzz/corpus/${name} ${found})
  set_tests_properties(${program} PROPERTIES TIMEOUT 120 ENVIRONMENT "${sanitizer_options}")
endfunction()

add_fuzz_target(lines tests/fuzz/LinesFuzz.cpp)
add_fuzz_target(report tests/fuzz/ReportFuzz.cpp)
add_fuzz_target(profile tests/fuzz/ProfileFuzz.cpp)
add_fuzz_target(numbers tests/fuzz/NumbersFuzz.cpp)
add_fuzz_target(lead_times tests/fuzz/LeadTimesFuzz.cpp)
# These define some classes of the driver themselves, in the place of the library's.
add_fuzz_target(dialogue tests/fuzz/DialogueFuzz.cpp tests/fuzz/DialogueReference.cpp
  tests/fuzz/ScriptedChannel.cpp)
add_fuzz_target(properties tests/fuzz/PropertiesFuzz.cpp tests/fuzz/RecordedEvents.cpp)
