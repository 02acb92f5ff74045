# cmake -D DIRECTORY=<scratch> -D BUILD=<build> | -D INSTALLED=<prefix> -D COMPILER=<compiler>
#       [-D LINKING=<options> -D TOOLCHAIN=<file> -D PROCESSOR=<of the programs> -D EMULATOR=<command>
#        -D SUFFIX=<of programs>] -P CheckConsumer.cmake
# Builds the example of an installation, which is made first if it is not given, and updates a simulated
# device with it.
cmake_minimum_required(VERSION 3.25)
file(REMOVE_RECURSE ${DIRECTORY})

function(run)
  execute_process(COMMAND ${ARGV} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(expect expected)
  string(REPLACE "\r" "" output "${output}")
  string(STRIP "${output}" output)
  if(NOT output STREQUAL expected)
    message(FATAL_ERROR "Expected \"${expected}\", not \"${output}\"")
  endif()
endfunction()

if(BUILD)
  set(INSTALLED ${DIRECTORY}/installed)
  run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${INSTALLED})
endif()

find_path(example main.cpp PATHS ${INSTALLED}/share/doc/ravelink ${INSTALLED}
          PATH_SUFFIXES examples/embedding REQUIRED NO_DEFAULT_PATH)
file(COPY ${example}/ DESTINATION ${DIRECTORY}/source)
# Programs that need no more than the foundation library link this.
file(APPEND ${DIRECTORY}/source/CMakeLists.txt "target_link_libraries(embedding PRIVATE ravelink::core)\n")
if(NOT SUFFIX)
  # This finds the header of the operating system, not that of the library.
  file(APPEND ${DIRECTORY}/source/main.cpp
       "#include <sys/file.h>\nint lock(int file) { return flock(file, LOCK_EX); }\n")
endif()
run(${CMAKE_COMMAND} -S ${DIRECTORY}/source -B ${DIRECTORY}/build -G Ninja
    -D CMAKE_BUILD_TYPE=Release -D CMAKE_CXX_COMPILER=${COMPILER}
    -D CMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -D CMAKE_SYSTEM_PROCESSOR=${PROCESSOR}
    -D CMAKE_CXX_FLAGS=-Werror -D CMAKE_EXE_LINKER_FLAGS=${LINKING}
    -D ravelink_ROOT=${INSTALLED} -D CMAKE_FIND_ROOT_PATH=${INSTALLED})
run(${CMAKE_COMMAND} --build ${DIRECTORY}/build)

# On Windows the programs are at the root of the installation.
find_file(device ravelink-device${SUFFIX} PATHS ${INSTALLED}/bin ${INSTALLED} REQUIRED NO_DEFAULT_PATH)
# The example sends its own source. The device prints its address in the second line and ends after one
# update, with 0 if that is complete.
set(embedding ${EMULATOR} ${DIRECTORY}/build/embedding${SUFFIX} ${DIRECTORY}/source/main.cpp)
set(client "read banner; read line; line=$(echo \"$line\" | tr -d '\\r'); \"$@\" \"\${line##* }\"; cat >&2")
execute_process(COMMAND ${EMULATOR} ${device} --once -b 127.0.0.1:0
                COMMAND sh -c "${client}" sh ${embedding}
                OUTPUT_VARIABLE output TIMEOUT 60 COMMAND_ERROR_IS_FATAL ANY)
expect("Accepted\nReceived\nChecked\nProcessing\nComplete")

execute_process(COMMAND ${embedding} 127.0.0.1:0 OUTPUT_VARIABLE output)
expect("Invalid port: The address provided (127.0.0.1|0) does not contain a valid port. Please use the \
form IP|Port\ncause: badAddress, kind: input, phase: start, delivered: nothing, retry: never")
file(REMOVE_RECURSE ${DIRECTORY})
