# cmake -D BUILD=<build folder> -D CONSUMER=<source folder> -D COMPILER=<compiler> [-D LINKING=<options>
#       -D TOOLCHAIN=<file> -D EMULATOR=<what runs its programs> -D SUFFIX=<of its programs>]
#       -P CheckConsumer.cmake
# Installs the build into a fresh folder, and builds and runs another project with what is there.
cmake_minimum_required(VERSION 3.25)
set(folder ${BUILD}/consumer)
file(REMOVE_RECURSE ${folder})

function(run)
  execute_process(COMMAND ${ARGV} OUTPUT_VARIABLE output ECHO_ERROR_VARIABLE COMMAND_ERROR_IS_FATAL ANY)
  set(output ${output} PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${folder}/installed)
run(${CMAKE_COMMAND} -S ${CONSUMER} -B ${folder}/build -G Ninja
    -D CMAKE_BUILD_TYPE=Release -D CMAKE_CXX_COMPILER=${COMPILER}
    -D CMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -D CMAKE_CXX_FLAGS=-Werror
    -D CMAKE_EXE_LINKER_FLAGS=${LINKING}
    -D ravelink_ROOT=${folder}/installed -D CMAKE_FIND_ROOT_PATH=${folder}/installed)
run(${CMAKE_COMMAND} --build ${folder}/build)
run(${EMULATOR} ${folder}/build/consumer${SUFFIX})
string(STRIP "${output}" output)
if(NOT output STREQUAL "3421780262 10.0.0.7|3007")
  message(FATAL_ERROR "The consumer says \"${output}\"")
endif()
file(REMOVE_RECURSE ${folder})
