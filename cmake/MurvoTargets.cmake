# What every target of this project shares: the language level, the warnings, Qt's strict mode, sanitizers.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_library(murvo_options INTERFACE)
target_compile_options(murvo_options INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -Wnon-virtual-dtor -Wold-style-cast
  $<$<BOOL:${MURVO_WERROR}>:-Werror>)
target_compile_definitions(murvo_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
  QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_NO_FOREACH QT_NO_KEYWORDS
  QT_DISABLE_DEPRECATED_BEFORE=0x060400)
if(MURVO_SANITIZE)
  target_compile_options(murvo_options INTERFACE
    -fsanitize=${MURVO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  target_link_options(murvo_options INTERFACE -fsanitize=${MURVO_SANITIZE})
endif()

# murvo_program(NAME): what every executable of the project gets, the program and the tests alike.
function(murvo_program name)
  target_link_libraries(${name} PRIVATE murvo_options)
  if(MURVO_SANITIZE)
    target_sources(${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests/support/keep_libraries.cpp")
    if(MURVO_SANITIZE STREQUAL "thread")
      target_sources(${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests/support/thread_sanitizer.cpp")
      target_link_libraries(${name} PRIVATE Qt6::Core)
    endif()
  endif()
endfunction()

# murvo_library(NAME SOURCES...): a static library with the project's options and its own folder's sources.
function(murvo_library name)
  add_library(${name} STATIC ${ARGN})
  target_link_libraries(${name} PUBLIC murvo_options)
endfunction()
