# Compiler options that every target of the project shares.

find_program(CCACHE ccache)
if(CCACHE)
  # Relative paths in the cache's keys let one compiler cache serve several checkouts.
  set(CMAKE_CXX_COMPILER_LAUNCHER
    ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${CCACHE})
endif()

add_library(kelvara_options INTERFACE)
target_compile_options(kelvara_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
  -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual -Wimplicit-fallthrough
  # Paths in assertions and debug information do not depend on where the checkout lies.
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # Takes the operators of std::string for overlapping copies (GCC bug 105651, mended in 13).
  target_compile_options(kelvara_options INTERFACE -Wno-restrict)
endif()
if(KELVARA_WERROR)
  target_compile_options(kelvara_options INTERFACE -Werror)
endif()
target_compile_definitions(kelvara_options INTERFACE KELVARA_VERSION="${PROJECT_VERSION}")

if(KELVARA_SANITIZE)
  add_compile_options(-fsanitize=${KELVARA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${KELVARA_SANITIZE})
endif()

find_package(Threads REQUIRED)
