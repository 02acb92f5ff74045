# cmake -D FOLDER=<scratch folder> -D BUILD=<build folder> | -D INSTALLED=<folder> -D COMPILER=<compiler>
#       [-D LINKING=<options> -D TOOLCHAIN=<file> -D EMULATOR=<what runs its programs>
#       -D SUFFIX=<of its programs>] -P CheckConsumer.cmake
# Builds and runs another project with what is installed; a build is installed first.
cmake_minimum_required(VERSION 3.25)
file(REMOVE_RECURSE ${FOLDER})

function(run)
  execute_process(COMMAND ${ARGV} OUTPUT_VARIABLE output ECHO_ERROR_VARIABLE COMMAND_ERROR_IS_FATAL ANY)
  set(output ${output} PARENT_SCOPE)
endfunction()

if(BUILD)
  set(INSTALLED ${FOLDER}/installed)
  run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${INSTALLED})
endif()
run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/consumer -B ${FOLDER}/build -G Ninja
    -D CMAKE_BUILD_TYPE=Release -D CMAKE_CXX_COMPILER=${COMPILER}
    -D CMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -D CMAKE_CXX_FLAGS=-Werror
    -D CMAKE_EXE_LINKER_FLAGS=${LINKING}
    -D ravelink_ROOT=${INSTALLED} -D CMAKE_FIND_ROOT_PATH=${INSTALLED})
run(${CMAKE_COMMAND} --build ${FOLDER}/build)
run(${EMULATOR} ${FOLDER}/build/consumer${SUFFIX})
string(STRIP "${output}" output)
if(NOT output STREQUAL "3421780262 10.0.0.7|3007")
  message(FATAL_ERROR "The consumer says \"${output}\"")
endif()
file(REMOVE_RECURSE ${FOLDER})
