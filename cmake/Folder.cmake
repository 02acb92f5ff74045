# ravelink_library(name SOURCES ... HEADERS ... USES ...)
# The library of one folder. Its headers form a header set, so that the build can check that each
# compiles alone; USES names the libraries of the folders below.
function(ravelink_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;HEADERS;USES")
  add_library(${name} STATIC ${arg_SOURCES})
  target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}
                                FILES ${arg_HEADERS})
  set_target_properties(${name} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
  target_link_libraries(${name} PUBLIC options ${arg_USES})
endfunction()
