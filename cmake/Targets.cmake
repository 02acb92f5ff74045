# Compiles each header alone.
add_custom_target(header_checks)

# ravelink_library(name SOURCES ... HEADERS ... USES ...)
# Defines the library of one directory, with the alias ravelink::<name> that find_package defines too.
# USES names the libraries that it depends on.
function(ravelink_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;HEADERS;USES")
  add_library(${name} STATIC ${arg_SOURCES} ${arg_HEADERS})
  add_library(ravelink::${name} ALIAS ${name})
  set_target_properties(${name} PROPERTIES RAVELINK_HEADERS "${arg_HEADERS}")
  target_compile_features(${name} PUBLIC cxx_std_20)
  # Only quoted includes find the headers: <sys/file.h> is that of the operating system.
  set(root $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>$<INSTALL_INTERFACE:$<INSTALL_PREFIX>/${headers_directory}>)
  target_compile_options(${name} PUBLIC $<$<COMPILE_LANGUAGE:CXX>:-iquote${root}>)
  # Users of the installed library choose their own warning and link options.
  target_link_libraries(${name} PUBLIC $<BUILD_INTERFACE:options> ${arg_USES})

  file(RELATIVE_PATH directory ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  set(checks)
  foreach(header IN LISTS arg_HEADERS)
    set(check ${CMAKE_CURRENT_BINARY_DIR}/headers/${header}.cpp)
    file(CONFIGURE OUTPUT ${check} CONTENT "#include \"${directory}/${header}\"\n" @ONLY)
    list(APPEND checks ${check})
  endforeach()
  add_library(${name}_headers OBJECT EXCLUDE_FROM_ALL ${checks})
  target_link_libraries(${name}_headers PRIVATE ${name})
  add_dependencies(header_checks ${name}_headers)
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
