# What every target of the project is compiled with.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

add_library(quermo_options INTERFACE)
target_compile_options(quermo_options INTERFACE -Wall -Wextra -Wconversion)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 warns at -O2 about every text that begins with a literal (its bug 105651).
  target_compile_options(quermo_options INTERFACE -Wno-restrict)
endif()
if(QUERMO_WERROR)
  target_compile_options(quermo_options INTERFACE -Werror)
endif()
if(QUERMO_SANITIZE)
  target_compile_options(quermo_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(quermo_options INTERFACE -fsanitize=address,undefined)
endif()

if(QUERMO_FUZZ)
  if(QUERMO_TESTS OR NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "QUERMO_FUZZ takes clang, and a build without QUERMO_TESTS; see the preset fuzz")
  endif()
  target_compile_options(quermo_options INTERFACE
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(quermo_options INTERFACE -fsanitize=address,undefined)
endif()

# Lets a target's sources begin from headers that are compiled once: "PRIVATE <header>..." names them,
# "REUSE_FROM target" takes another target's. Only the presets asan and run do so, where reading
# headers is half of the work; the others compile each file by itself, so that an include that is missing
# shows there.
function(quermo_precompile name)
  if(QUERMO_PRECOMPILE)
    target_precompile_headers(${name} ${ARGN})
  endif()
endfunction()

# A static library of the project: its headers are included by their path from the root of their
# tree ("platform/ado/Connection.h", "engine/session.h").
function(quermo_library name)
  cmake_parse_arguments(ARG "" "ROOT" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC "${ARG_ROOT}")
  target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE quermo_options)
endfunction()

# A GoogleTest program; its tests run one ctest entry for the whole program, since a program's
# fixtures share one start of the practice server.
function(quermo_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK;ENV" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} GTest::gtest quermo_options)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 600 ENVIRONMENT "QT_QPA_PLATFORM=offscreen;${ARG_ENV}")
endfunction()

# Turns the Designer layouts among a library's sources into headers that its users see as well.
function(quermo_forms name)
  set(AUTOUIC_DIR "${CMAKE_CURRENT_BINARY_DIR}/${name}_ui")
  set_target_properties(${name} PROPERTIES AUTOUIC OFF AUTOMOC OFF)
  get_target_property(sources ${name} SOURCES)
  set(generated "")
  foreach(source IN LISTS sources)
    if(source MATCHES "\\.ui$")
      get_filename_component(form "${source}" NAME_WE)
      set(header "${AUTOUIC_DIR}/ui_${form}.h")
      add_custom_command(OUTPUT "${header}"
        COMMAND Qt6::uic -o "${header}" "${CMAKE_CURRENT_SOURCE_DIR}/${source}"
        DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${source}" VERBATIM)
      list(APPEND generated "${header}")
    endif()
  endforeach()
  file(MAKE_DIRECTORY "${AUTOUIC_DIR}")
  add_custom_target(${name}_ui DEPENDS ${generated})
  add_dependencies(${name} ${name}_ui)
  target_sources(${name} PRIVATE ${generated})
  target_include_directories(${name} SYSTEM PUBLIC "${AUTOUIC_DIR}")
endfunction()
