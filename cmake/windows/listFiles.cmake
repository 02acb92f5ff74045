# Writes the commands that remove the installed files, next to the staging directory. cpack's own list
# has the order of the file system, which differs from machine to machine.
set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY})
file(GLOB_RECURSE entries LIST_DIRECTORIES true RELATIVE ${root} ${root}/*)
list(REVERSE entries)  # files before their directories
set(commands)
foreach(entry IN LISTS entries)
  set(command Delete)
  if(IS_DIRECTORY ${root}/${entry})
    set(command RMDir)
  endif()
  string(REPLACE / \\ entry ${entry})
  string(APPEND commands "${command} \"$INSTDIR\\${entry}\"\n")
endforeach()
file(WRITE ${root}.nsh "${commands}")
