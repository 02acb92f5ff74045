# The manual in ${manual}, generated from the documents: a man page of each program, and an HTML page
# of each document at the document's own path.
find_program(PANDOC pandoc)
if(NOT PANDOC)
  message(STATUS "pandoc not found: skipping man pages and HTML")
  return()
endif()

# Date the man pages with the last release, so that the same sources always give the same pages.
set(changes ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${changes})
file(STRINGS ${changes} release REGEX "^## .* - [0-9-]+$" LIMIT_COUNT 1)
string(REGEX REPLACE ".* - " "" release "${release}")

set(manual ${PROJECT_BINARY_DIR}/manual)
set(filter ${PROJECT_SOURCE_DIR}/cmake/manual.lua)
set(to_man -t man -M section=1 -M "header=User Commands" -M "footer=ravelink ${PROJECT_VERSION}"
           -M date=${release} -M adjusting=l -M hyphenate=false)
set(to_html -t html -M lang=en -M maxwidth=60em)
file(MAKE_DIRECTORY ${manual}/docs)

# manual_page(document page options ...)
# Converts a document to a page with these options of pandoc, and appends the page to ${pages}.
function(manual_page document page)
  add_custom_command(
    OUTPUT ${manual}/${page}
    COMMAND ${PANDOC} -s -f gfm -L ${filter} ${ARGN} -o ${manual}/${page} ${document}
    DEPENDS ${document} ${filter}
    COMMENT "Generating ${page}"
    VERBATIM)
  set(pages ${pages} ${manual}/${page} PARENT_SCOPE)
endfunction()

file(GLOB documents RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS *.md docs/*.md)
set(pages)
foreach(document IN LISTS documents)
  cmake_path(REPLACE_EXTENSION document html OUTPUT_VARIABLE page)
  manual_page(${PROJECT_SOURCE_DIR}/${document} ${page} ${to_html})
endforeach()
foreach(program IN LISTS programs)
  manual_page(${PROJECT_SOURCE_DIR}/docs/${program}.md ${program}.1 ${to_man})
endforeach()
add_custom_target(manual ALL DEPENDS ${pages})
