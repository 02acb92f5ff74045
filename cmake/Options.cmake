# The language standard, warnings, sanitizers and link options of all targets.
add_library(options INTERFACE)
target_compile_features(options INTERFACE cxx_std_20)
target_compile_options(options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
set(CMAKE_CXX_EXTENSIONS OFF)

if(RAVELINK_WARNINGS_AS_ERRORS)
  target_compile_options(options INTERFACE -Werror)
endif()

if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  # Files of more than 2 GiB, and times after 2037, such as those of files.
  target_compile_definitions(options INTERFACE _FILE_OFFSET_BITS=64 _TIME_BITS=64)
endif()

# Removes unused code, including the standard library's: nearly half of a release binary.
target_compile_options(options INTERFACE -ffunction-sections -fdata-sections)
target_link_options(options INTERFACE -Wl,--gc-sections -Wl,--as-needed)

# Release programs do not depend on the directory and the time of the build.
target_compile_options(options INTERFACE $<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>)
if(WIN32)
  target_link_options(options INTERFACE LINKER:--no-insert-timestamp)
endif()

if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT RAVELINK_SANITIZERS)
  include(Hardening)
  set(hardened ON)
endif()

if(RAVELINK_SANITIZERS)
  # Without -fno-sanitize-recover=all, a program exits with 0 despite undefined behaviour.
  set(sanitizer_flags -fsanitize=${RAVELINK_SANITIZERS} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  target_compile_options(options INTERFACE ${sanitizer_flags})
  target_link_options(options INTERFACE ${sanitizer_flags})
elseif(WIN32)
  # A single file that needs no libraries besides those of Windows.
  target_link_options(options INTERFACE -static)
else()
  # Release binaries start faster and run on machines with another libstdc++.
  target_link_options(options INTERFACE $<$<CONFIG:Release>:-static-libstdc++> $<$<CONFIG:Release>:-static-libgcc>)
endif()
