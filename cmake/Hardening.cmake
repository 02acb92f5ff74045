# Makes memory errors in release programs harder to exploit, with what compiler and target support.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)

set(flags -fstack-protector-strong)
if(NOT WIN32)
  # Windows probes every page of a stack anyway; GCC fails there with the first of these.
  list(APPEND flags -fstack-clash-protection -fcf-protection -mbranch-protection=standard)
endif()
foreach(flag IN LISTS flags)
  string(MAKE_C_IDENTIFIER "has${flag}" result)
  check_cxx_compiler_flag(${flag} ${result})
  if(${result})
    target_compile_options(options INTERFACE ${flag})
  endif()
endforeach()
# Some compilers define _FORTIFY_SOURCE already.
target_compile_options(options INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -D_GLIBCXX_ASSERTIONS)

if(WIN32)
  target_link_options(options INTERFACE LINKER:--dynamicbase,--high-entropy-va,--nxcompat)
else()
  check_pie_supported(LANGUAGES CXX)
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  # Without it, position-independent code calls functions of its own source instead of inlining them.
  target_compile_options(options INTERFACE -fno-semantic-interposition)
  target_link_options(options INTERFACE LINKER:-z,relro,-z,now,-z,noexecstack)
endif()
