# What every target of the project shares: warnings, sanitizers, ccache, and one
# function that turns a folder into a library which sees only the folders below it.

find_program(CORVANE_CCACHE ccache)
if(CORVANE_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CORVANE_CCACHE})
endif()

add_library(corvane_flags INTERFACE)
target_compile_options(corvane_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(CORVANE_WERROR)
  target_compile_options(corvane_flags INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
  target_compile_options(corvane_flags INTERFACE -Wthread-safety)
elseif(CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # At -O3, GCC 12 takes any string that is put together for one that overlaps itself.
  target_compile_options(corvane_flags INTERFACE -Wno-restrict)
endif()
if(CORVANE_SANITIZE)
  target_compile_options(corvane_flags INTERFACE
    -fsanitize=${CORVANE_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(corvane_flags INTERFACE -fsanitize=${CORVANE_SANITIZE})
  if(CORVANE_SANITIZE MATCHES undefined)
    target_compile_options(corvane_flags INTERFACE -fno-sanitize-recover=undefined)
  endif()
endif()

# corvane_folder(NAME BELOW...): the library of src/NAME, on the folders named.
function(corvane_folder name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  add_library(${name} STATIC ${sources})
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARGN} Threads::Threads PRIVATE corvane_flags)
endfunction()
