# The workbench as a user runs it.
if(TARGET workbench)
  target_compile_definitions(workbench PRIVATE WORKBENCH_VERSION="${PROJECT_VERSION}")
endif()
