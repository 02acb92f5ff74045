# cmake -D ROOT=<source folder> -P CheckIncludes.cmake
# Fails when a folder includes something of a folder that it must not know, or when the operating
# system shows outside sys/platform.
cmake_minimum_required(VERSION 3.25)

# The table of the folders, "| `folder` | `folder`, ... | ... |", top down: may_<folder> becomes what
# each stands on, with what that stands on.
file(STRINGS ${ROOT}/docs/architecture.md rows REGEX "^\\| `[a-z/]+` \\| (`|\\|)")
set(house)
foreach(row IN LISTS rows)
  string(REGEX MATCHALL "^\\| `[a-z/]+` \\|[^|]*" cells "${row}")
  string(REGEX MATCHALL "[a-z/]+" folders "${cells}")
  list(POP_FRONT folders folder)
  list(APPEND house ${folder})
  set(may ${folders})
  foreach(below IN LISTS folders)
    if(NOT below IN_LIST house)
      message(FATAL_ERROR "docs/architecture.md: ${folder} stands on ${below}, which is in no row above")
    endif()
    string(REPLACE "/" "_" key ${below})
    list(APPEND may ${may_${key}})
  endforeach()
  string(REPLACE "/" "_" key ${folder})
  set(may_${key} ${may})
endforeach()

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
  if(NOT folder IN_LIST house)
    list(APPEND faults "${file}: its folder has no place in the house")
    continue()
  endif()
  set(allowed ${folder} ${may_${key}})

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
