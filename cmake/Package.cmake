# The driver package: the target dist gathers in package/ what an administrator installs. The work
# is done by MakePackage.cmake, which gets its list of files from here.
function(add_package)
  # suplcheck is not in every build of the project.
  set(programs $<TARGET_FILE:Stelvane>)
  set(needed Stelvane trace_files)
  if(TARGET suplcheck)
    list(APPEND programs $<TARGET_FILE:suplcheck>)
    list(APPEND needed suplcheck)
  endif()
  set(list_file ${PROJECT_BINARY_DIR}/package-files.cmake)
  file(GENERATE OUTPUT ${list_file} CONTENT "set(programs ${programs})\n")

  add_custom_target(dist ALL
    COMMAND ${CMAKE_COMMAND} -D source=${PROJECT_SOURCE_DIR} -D build=${PROJECT_BINARY_DIR}
      -D version=${PROJECT_VERSION} -P ${PROJECT_SOURCE_DIR}/cmake/MakePackage.cmake
    DEPENDS ${PROJECT_SOURCE_DIR}/cmake/MakePackage.cmake
    COMMENT "Gathering the driver package"
    USES_TERMINAL VERBATIM)
  add_dependencies(dist ${needed})
endfunction()

# After every target is known.
cmake_language(DEFER CALL add_package)
