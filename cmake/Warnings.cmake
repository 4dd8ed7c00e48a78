# Settings of everything we compile; platform headers are included as system headers.
add_library(stelvane_settings INTERFACE)
target_include_directories(stelvane_settings INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(stelvane_settings INTERFACE
  -pedantic -Wall -Wextra -Wshadow -Wconversion -Wsign-conversion -Werror
  # COM interfaces have no virtual destructor, and unused callback parameters keep their names.
  -Wno-unused-parameter
  # GCC 12 sees overlaps in std::string concatenations that are none.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(WIN32)
  target_compile_definitions(stelvane_settings INTERFACE
    _WIN32_WINNT=0x0602 WINVER=0x0602 NTDDI_VERSION=0x06020000 UNICODE _UNICODE NOMINMAX
    WIN32_LEAN_AND_MEAN)
endif()
