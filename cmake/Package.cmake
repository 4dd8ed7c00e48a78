# The driver package: the target dist gathers in package/ what an administrator installs. The work
# is done by MakePackage.cmake, which gets the list of programs from here.
file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/package-files.cmake
  CONTENT "set(programs [[$<TARGET_FILE:Stelvane>]] [[$<TARGET_FILE:suplcheck>]])\n")
add_custom_target(dist ALL
  COMMAND ${CMAKE_COMMAND} -D source=${PROJECT_SOURCE_DIR} -D build=${PROJECT_BINARY_DIR}
    -D version=${PROJECT_VERSION} -P ${PROJECT_SOURCE_DIR}/cmake/MakePackage.cmake
  COMMENT "Gathering the driver package"
  USES_TERMINAL VERBATIM)
add_dependencies(dist Stelvane suplcheck trace_files)
