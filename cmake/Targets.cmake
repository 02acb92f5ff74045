# ravelink_library(name SOURCES ... HEADERS ... USES ...)
# The library of one folder. Its headers form a header set, so that the build can check that each
# compiles alone, and that an installation keeps their folders; USES names the libraries of the
# folders below.
function(ravelink_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;HEADERS;USES")
  add_library(${name} STATIC ${arg_SOURCES})
  target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}
                                FILES ${arg_HEADERS})
  set_target_properties(${name} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
  target_compile_features(${name} PUBLIC cxx_std_20)
  # Users of the installed library choose their own warning and link options.
  target_link_libraries(${name} PUBLIC $<BUILD_INTERFACE:options> ${arg_USES})
endfunction()

# ravelink_executable(name library): a program: its folder's library, which learns the version, and
# the main.cpp beside it.
function(ravelink_executable name library)
  # As a number: with its leading zero, 08 would be a bad octal one.
  math(EXPR minor ${PROJECT_VERSION_MINOR})
  target_compile_definitions(${library} PRIVATE RAVELINK_VERSION_MAJOR=${PROJECT_VERSION_MAJOR}
                                                RAVELINK_VERSION_MINOR=${minor})
  add_executable(${name} main.cpp)
  target_link_libraries(${name} PRIVATE ${library})
  if(WIN32)
    # What the system shows as the properties of the program.
    string(REGEX REPLACE "\\.0*([0-9])" ",\\1" file_version ${PROJECT_VERSION},0,0)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/program.rc.in ${name}.rc @ONLY)
    target_sources(${name} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${name}.rc)
  endif()
endfunction()
