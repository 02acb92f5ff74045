# The manual, made of docs/*.md: a man page of each program, in RAVELINK_MAN_PAGES, and a page of HTML
# of each document, in RAVELINK_HTML_PAGES, with the pictures that they show.
include(GNUInstallDirs)

find_program(PANDOC pandoc)
if(NOT PANDOC)
  message(STATUS "pandoc is not here: the man pages are left out")
  return()
endif()

# The date of the last release, so that the same tree gives the same pages on any day.
set(release)
set(changelog ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
if(EXISTS ${changelog})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${changelog})
  file(STRINGS ${changelog} release REGEX "^## .*[0-9]+-[0-9]+-[0-9]+$" LIMIT_COUNT 1)
  string(REGEX MATCH "[0-9]+-[0-9]+-[0-9]+$" release "${release}")
endif()

set(manual ${PROJECT_BINARY_DIR}/manual)
set(filter ${PROJECT_SOURCE_DIR}/docs/manual.lua)
set(to_man -t man -M section=1 -M "header=User Commands" -M "footer=ravelink ${PROJECT_VERSION}"
           -M date=${release} -M adjusting=l -M hyphenate=false)
set(to_html -t html -M lang=en -M maxwidth=60em)
file(MAKE_DIRECTORY ${manual})

# manual_page(document page options ...): makes the page of a document.
function(manual_page document page)
  add_custom_command(
    OUTPUT ${manual}/${page}
    COMMAND ${PANDOC} -s -f gfm -L ${filter} ${ARGN} -o ${manual}/${page} ${document}
    DEPENDS ${document} ${filter}
    COMMENT "Making the page ${page}"
    VERBATIM)
endfunction()

file(GLOB documents CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.md)
foreach(document IN LISTS documents)
  cmake_path(GET document STEM name)
  manual_page(${document} ${name}.html ${to_html})
  list(APPEND RAVELINK_HTML_PAGES ${manual}/${name}.html)
  if(name MATCHES "^ravelink")
    manual_page(${document} ${name}.1 ${to_man})
    list(APPEND RAVELINK_MAN_PAGES ${manual}/${name}.1)
  endif()
endforeach()

file(GLOB pictures CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.svg)
foreach(picture IN LISTS pictures)
  cmake_path(GET picture FILENAME name)
  add_custom_command(
    OUTPUT ${manual}/${name}
    COMMAND ${CMAKE_COMMAND} -E copy ${picture} ${manual}/${name}
    DEPENDS ${picture}
    VERBATIM)
  list(APPEND RAVELINK_HTML_PAGES ${manual}/${name})
endforeach()

add_custom_target(manual ALL DEPENDS ${RAVELINK_MAN_PAGES} ${RAVELINK_HTML_PAGES})

if(UNIX)
  install(FILES ${RAVELINK_MAN_PAGES} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()
