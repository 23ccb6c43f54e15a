# What every target of the project shares, and the three functions that the folders' own lists use.

option(GLASSPANE_WERROR "Warnings are errors" ON)
option(GLASSPANE_QT "Build glasspane, the program with the panel" ON)
option(GLASSPANE_TESTS "Build the tests" ON)
option(GLASSPANE_BENCH "Build the benchmarks" OFF)
option(GLASSPANE_FUZZ "Build what libFuzzer runs, with clang" OFF)
set(GLASSPANE_SANITIZE "" CACHE STRING "Sanitizers, as the argument of -fsanitize=")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O3 -g -DNDEBUG")

find_program(GLASSPANE_CCACHE ccache)
if(GLASSPANE_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros
                                  ${GLASSPANE_CCACHE})
endif()

find_program(GLASSPANE_LLD ld.lld)
if(GLASSPANE_LLD)
  add_link_options(-fuse-ld=lld)
endif()

# A program loads no library that none of its code calls.
add_link_options(-Wl,--as-needed)

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wcast-align
                    -Wformat=2 -Wimplicit-fallthrough)
if(GLASSPANE_WERROR)
  add_compile_options(-Werror)
endif()
if(GLASSPANE_SANITIZE)
  # Instrumented code makes g++ 12 see uninitialised members in its own <functional>. Line numbers are all that
  # reports need.
  add_compile_options(-fsanitize=${GLASSPANE_SANITIZE} -fno-omit-frame-pointer -O1 -g1
                      $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  add_link_options(-fsanitize=${GLASSPANE_SANITIZE})
  if(GLASSPANE_SANITIZE MATCHES "undefined")
    add_compile_options(-fno-sanitize-recover=undefined)
  endif()
endif()

# glasspane_library(<name> [LINKS <lower floors and packages>...] [PRIVATE_LINKS <packages>...])
# One static library of the folder's sources (its src/ where there is one). Its headers are included by
# bare name. LINKS are exactly the floors below that the folder's headers use.
function(glasspane_library name)
  cmake_parse_arguments(ARG "" "" "LINKS;PRIVATE_LINKS" ${ARGN})
  set(folder ${CMAKE_CURRENT_SOURCE_DIR})
  if(IS_DIRECTORY ${folder}/src)
    set(folder ${folder}/src)
  endif()
  file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp)
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${folder})
  target_link_libraries(${name} PUBLIC ${ARG_LINKS} PRIVATE ${ARG_PRIVATE_LINKS})
endfunction()

# glasspane_test(<name> [LABEL unit|system|slow] [LINKS ...] [TIMEOUT seconds] [LOCK <resource>] [OWN_HEADERS])
# One GoogleTest program of the calling folder's sources; each test becomes one of CTest's. Of the tests
# with one LOCK only one runs at a time. OWN_HEADERS is for code that is compiled with other flags, which can't
# share the headers that were parsed for all.
function(glasspane_test name)
  cmake_parse_arguments(ARG "OWN_HEADERS" "LABEL;TIMEOUT;LOCK" "LINKS" ${ARGN})
  if(NOT ARG_LABEL)
    set(ARG_LABEL unit)
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 60)
  endif()
  if(ARG_LOCK)
    set(lock RESOURCE_LOCK ${ARG_LOCK})
  endif()
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} GTest::gmock)
  if(NOT ARG_OWN_HEADERS)
    target_precompile_headers(${name} REUSE_FROM test_support)
  endif()
  if(ARG_LABEL STREQUAL unit)
    add_dependencies(unit_tests ${name})
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 30
                       PROPERTIES LABELS ${ARG_LABEL} TIMEOUT ${ARG_TIMEOUT} ${lock})
endfunction()
