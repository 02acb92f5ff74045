# cmake -D ROOT=<source folder> -P CheckHouse.cmake
# Fails when a folder includes something of a folder that it must not know, or when the operating
# system shows outside sys/platform.
cmake_minimum_required(VERSION 3.25)


# Each folder, and the folders that it may include besides itself. "+folder" takes all that the
# folder may include as well.
set(may_sys_platform)
set(may_core_object sys/platform)
set(may_core_text core/object +core_object)
set(may_core_stream core/text +core_text)
set(may_core_console core/text +core_text)
set(may_core_time core/text +core_text)
set(may_core_crc core/text +core_text)
set(may_sys core/stream core/console core/time core/crc +core_text core/text)
set(may_core_runtime sys +sys)
set(may_core_net core/runtime +core_runtime)
set(may_core_archive core/runtime +core_runtime)
set(may_update_protocol core/crc +core_crc)
set(may_update update/protocol core/net +core_net)
set(may_device update/protocol core/archive core/net +core_net)
set(may_pack core/archive +core_archive)

function(expand folder out)
  string(REPLACE "/" "_" key ${folder})
  set(result)
  foreach(item IN LISTS may_${key})
    if(item MATCHES "^\\+(.*)")
      expand(${CMAKE_MATCH_1} below)
      list(APPEND result ${below})
    else()
      list(APPEND result ${item})
    endif()
  endforeach()
  set(${out} ${result} PARENT_SCOPE)
endfunction()

set(os_header "^(windows|winsock2|ws2tcpip|iphlpapi|unistd|poll|fcntl|netdb|pthread|signal|ifaddrs|dirent|(sys|arpa|net|netinet)/.*)\\.h$")
set(faults)

file(GLOB_RECURSE files RELATIVE ${ROOT} ${ROOT}/core/*.h ${ROOT}/core/*.cpp ${ROOT}/sys/*.h
     ${ROOT}/sys/*.cpp ${ROOT}/update/*.h ${ROOT}/update/*.cpp ${ROOT}/device/*.h
     ${ROOT}/device/*.cpp ${ROOT}/pack/*.h ${ROOT}/pack/*.cpp)
list(LENGTH files count)
if(count EQUAL 0)
  message(FATAL_ERROR "no sources below ${ROOT}")
endif()

foreach(file IN LISTS files)
  cmake_path(GET file PARENT_PATH folder)
  string(REGEX REPLACE "^sys/platform/.*" "sys/platform" folder ${folder})
  string(REPLACE "/" "_" key ${folder})
  if(NOT DEFINED may_${key} AND NOT key STREQUAL "sys_platform")
    list(APPEND faults "${file}: its folder has no place in the house")
    continue()
  endif()
  expand(${folder} allowed)
  list(APPEND allowed ${folder})

  file(STRINGS ${ROOT}/${file} lines REGEX "^[ \t]*#")
  foreach(line IN LISTS lines)
    if(line MATCHES "#[ \t]*include[ \t]*\"([^\"]+)\"")
      set(included ${CMAKE_MATCH_1})
      cmake_path(GET included PARENT_PATH target)
      string(REGEX REPLACE "^sys/platform/.*" "sys/platform" target "${target}")
      if(NOT target IN_LIST allowed)
        list(APPEND faults "${file}: must not include ${included}")
      endif()
    elseif(folder STREQUAL "sys/platform")
      continue()
    elseif(line MATCHES "#[ \t]*include[ \t]*<([^>]+)>" AND CMAKE_MATCH_1 MATCHES "${os_header}")
      list(APPEND faults "${file}: the operating system's ${CMAKE_MATCH_1}")
    elseif(line MATCHES "_WIN32|__linux__|__unix__|__APPLE__")
      list(APPEND faults "${file}: asks for the operating system")
    endif()
  endforeach()
endforeach()

# The operating system's headers and names stay in its own two folders, out of the headers that
# the other folders see.
file(GLOB shared RELATIVE ${ROOT} ${ROOT}/sys/platform/*.h)
foreach(file IN LISTS shared)
  file(STRINGS ${ROOT}/${file} lines REGEX "^[ \t]*#[ \t]*include[ \t]*<.*\\.h>|_WIN32")
  if(lines)
    list(APPEND faults "${file}: the operating system shows: ${lines}")
  endif()
endforeach()

list(JOIN faults "\n  " text)
if(faults)
  message(FATAL_ERROR "The house is not in order:\n  ${text}")
endif()
message(STATUS "${count} files, every include in order")
