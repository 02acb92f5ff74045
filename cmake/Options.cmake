# The language level, warnings and sanitizers that every target of the project is built with.
add_library(options INTERFACE)
target_compile_features(options INTERFACE cxx_std_20)
target_compile_options(options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
set(CMAKE_CXX_EXTENSIONS OFF)

if(RAVELINK_WARNINGS_AS_ERRORS)
  target_compile_options(options INTERFACE -Werror)
endif()

# Leaves out what no program calls, of the standard library too: nearly half of a released program.
target_compile_options(options INTERFACE -ffunction-sections -fdata-sections)
target_link_options(options INTERFACE -Wl,--gc-sections -Wl,--as-needed)

if(RAVELINK_SANITIZERS)
  # Without -fno-sanitize-recover=all an undefined-behaviour report leaves the exit status at 0.
  set(sanitizer_flags -fsanitize=${RAVELINK_SANITIZERS} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  target_compile_options(options INTERFACE ${sanitizer_flags})
  target_link_options(options INTERFACE ${sanitizer_flags})
elseif(WIN32)
  # One file that runs anywhere: no library beside the system's own.
  target_link_options(options INTERFACE -static)
else()
  # A released program starts faster and runs on machines with another libstdc++.
  target_link_options(options INTERFACE $<$<CONFIG:Release>:-static-libstdc++> $<$<CONFIG:Release>:-static-libgcc>)
endif()
