# Makes the folder package/ of a 64-bit build afresh:
#   cmake -D source=FOLDER -D build=FOLDER -D version=1.0.0 -P MakePackage.cmake
include(${build}/package-files.cmake)
set(package ${build}/package)
file(REMOVE_RECURSE ${package})

# The 32-bit driver has a build folder of its own, which another packaging run may be using.
file(LOCK ${source}/build/windows-x86.lock GUARD PROCESS)
execute_process(COMMAND ${source}/tools/configure windows-x86 COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND ${CMAKE_COMMAND} --build ${source}/build/windows-x86 --target Stelvane
  COMMAND_ERROR_IS_FATAL ANY)

file(COPY ${programs} DESTINATION ${package})
file(COPY ${source}/build/windows-x86/Stelvane.dll DESTINATION ${package}/x86)
file(COPY ${build}/tmf DESTINATION ${package})

# CMake takes SOURCE_DATE_EPOCH, where it is set, for the present time. What a person opens on
# Windows has Windows' ends of lines: the editor of Windows 8 knows no others.
string(TIMESTAMP DRIVER_DATE "%m/%d/%Y" UTC)
set(DRIVER_VERSION ${version}.0)
set(texts package/Stelvane.inf package/StelvaneSUPLInfo-DTD.xml docs/install.md docs/debugging.md)
foreach(text IN LISTS texts)
  get_filename_component(name ${text} NAME)
  configure_file(${source}/${text} ${package}/${name} @ONLY NEWLINE_STYLE CRLF)
endforeach()
