# How every target of this tree is made: the language level, the warnings, the sanitizers.

add_library(sectorbox_options INTERFACE)
target_compile_features(sectorbox_options INTERFACE cxx_std_20)
target_include_directories(sectorbox_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(sectorbox_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
# GCC 12 sees overlapping copies in joined strings that aren't there once it inlines them.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(sectorbox_options INTERFACE $<$<CONFIG:Release>:-Wno-restrict>)
endif()
if(SECTORBOX_WERROR)
  target_compile_options(sectorbox_options INTERFACE -Werror)
endif()
# ccache wants this of GCC before it keeps what was compiled with a precompiled header.
if(SECTORBOX_PRECOMPILE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(sectorbox_options INTERFACE -fpch-preprocess)
endif()
if(SECTORBOX_SANITIZE)
  target_compile_options(sectorbox_options INTERFACE -fsanitize=address,undefined
                                                     -fno-sanitize-recover=undefined
                                                     -fno-omit-frame-pointer)
  target_link_options(sectorbox_options INTERFACE -fsanitize=address,undefined)
endif()
if(SECTORBOX_FUZZ)
  target_compile_options(sectorbox_options INTERFACE -fsanitize=fuzzer-no-link,address,undefined)
  target_link_options(sectorbox_options INTERFACE -fsanitize=address,undefined)
endif()

set(CMAKE_CXX_EXTENSIONS OFF)

# What runs lies in bin/, with the companion files beside it, as they lie beside an installed program.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")

# sectorbox_take_headers(NAME HOLDER): NAME's sources start with the precompiled headers of HOLDER, a
# target of cmake/precompiled. A source still includes what it uses: clang-tidy reads it without them.
function(sectorbox_take_headers name holder)
  if(SECTORBOX_PRECOMPILE)
    target_precompile_headers(${name} REUSE_FROM ${holder})
  endif()
endfunction()

# What the compiler is told of every library of windows.
function(sectorbox_qt_flags name)
  target_link_libraries(${name} PUBLIC Qt6::Widgets)
  target_compile_definitions(${name} PRIVATE QT_NO_CAST_FROM_ASCII QT_NO_KEYWORDS)
endfunction()

# What the compiler is told of every test program. Optimising the tests' own code under sanitizers takes
# the compiler twice as long, and longer than the tests then run.
function(sectorbox_test_flags name)
  if(SECTORBOX_SANITIZE)
    target_compile_options(${name} PRIVATE -O0)
  endif()
endfunction()

# sectorbox_add_library(NAME SOURCES... [LINKS LIBRARIES...]): what both kinds of libraries are.
function(sectorbox_add_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC sectorbox_options ${ARG_LINKS})
endfunction()

# sectorbox_library(NAME SOURCES... [LINKS LIBRARIES...]): a static library of plain C++.
function(sectorbox_library name)
  sectorbox_add_library(${name} ${ARGN})
  sectorbox_take_headers(${name} plain_headers)
endfunction()

# sectorbox_qt_library(NAME SOURCES... [LINKS ...]): a static library of windows.
function(sectorbox_qt_library name)
  sectorbox_add_library(${name} ${ARGN})
  set_target_properties(${name} PROPERTIES AUTOMOC ON AUTORCC ON)
  sectorbox_qt_flags(${name})
  sectorbox_take_headers(${name} window_headers)
endfunction()

# What every test program has.
function(sectorbox_test_program name)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
  sectorbox_test_flags(${name})
  target_sources(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests/support/OwnFolder.cpp")
endfunction()

# sectorbox_test(NAME LABEL label SOURCES... [LINKS ...]): a GoogleTest program, one CTest entry a test.
function(sectorbox_test name)
  cmake_parse_arguments(ARG "" "LABEL" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE sectorbox_options ${ARG_LINKS} GTest::gtest_main)
  sectorbox_test_program(${name})
  sectorbox_take_headers(${name} test_headers)
  gtest_discover_tests(${name} PROPERTIES LABELS ${ARG_LABEL} DISCOVERY_TIMEOUT 60)
endfunction()

# sectorbox_window_test(NAME SOURCES... [LINKS ...]): a GoogleTest program of window tests, offscreen;
# its main and its fixture come from window_test_support.
function(sectorbox_window_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE sectorbox_options ${ARG_LINKS} window_test_support)
  sectorbox_test_program(${name})
  if(SECTORBOX_PRECOMPILE)
    target_link_libraries(${name} PRIVATE window_test_headers)
  endif()
  gtest_discover_tests(${name} PROPERTIES LABELS gui ENVIRONMENT QT_QPA_PLATFORM=offscreen TIMEOUT 120
                       DISCOVERY_TIMEOUT 60)
endfunction()
