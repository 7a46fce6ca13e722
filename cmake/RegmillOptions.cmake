# Warnings and sanitizers that every target of the project shares.
add_library(regmill_options INTERFACE)
target_compile_options(regmill_options INTERFACE -Wall -Wextra -Wno-unused-parameter)
if(REGMILL_SANITIZE)
  target_compile_options(regmill_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(regmill_options INTERFACE -fsanitize=address,undefined)
endif()
if(REGMILL_FUZZ)
  # Libraries get coverage instrumentation; only the fuzz executables link the fuzzer's main.
  target_compile_options(regmill_options INTERFACE
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(regmill_options INTERFACE -fsanitize=address,undefined)
endif()

# regmill_library(name SOURCES ... DEPS ...): one static library per source folder.
function(regmill_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  # Position-independent so that a loadable module of the front end can hold the
  # library too; without interposition the code is as fast as in the program.
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_compile_options(${name} PRIVATE -fno-semantic-interposition)
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC regmill_options ${ARG_DEPS})
endfunction()
