# ravelink_library(name SOURCES ... HEADERS ... USES ...)
# Defines the library of one directory, with the alias ravelink::<name> that find_package defines too.
# USES names the libraries that it depends on. The headers form a header set: the build checks that each
# compiles alone, and an installation keeps their directories.
function(ravelink_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;HEADERS;USES")
  add_library(${name} STATIC ${arg_SOURCES})
  add_library(ravelink::${name} ALIAS ${name})
  target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}
                                FILES ${arg_HEADERS})
  set_target_properties(${name} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
  target_compile_features(${name} PUBLIC cxx_std_20)
  # Users of the installed library choose their own warning and link options.
  target_link_libraries(${name} PUBLIC $<BUILD_INTERFACE:options> ${arg_USES})
endfunction()

# ravelink_executable(name library)
# Defines a program: main.cpp of the current directory and its library.
function(ravelink_executable name library)
  add_executable(${name} main.cpp)
  target_link_libraries(${name} PRIVATE ${library})
  if(WIN32)
    # The properties that Windows shows of the program.
    string(REGEX REPLACE "\\.0*([0-9])" ",\\1" file_version ${PROJECT_VERSION},0,0)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/program.rc.in ${name}.rc @ONLY)
    target_sources(${name} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${name}.rc)
  endif()
endfunction()
