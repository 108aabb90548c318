# How every target of the project is made: warnings, sanitizers, names, installed headers.

include(GNUInstallDirs)

function(zarvo_compile_options target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror
    "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=")
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(${target} PRIVATE -Wthread-safety)
  endif()
  if(ZARVO_SANITIZE)
    target_compile_options(${target} PRIVATE
      "-fsanitize=${ZARVO_SANITIZE}" -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PUBLIC "-fsanitize=${ZARVO_SANITIZE}")
  endif()
endfunction()

# zarvo_library(Foundation SOURCES a.cpp HEADERS a.h [GENERATED g.h ...] [LINK Zarvo::X ...]
#               [PRIVATE_LINK y ...])
#
# A library of one folder, with the alias Zarvo::<name>; one of templates alone has no SOURCES.
# HEADERS are installed under their path from the root, GENERATED (made while configuring) under
# theirs from the build's "generated"; LINK is what the headers need, PRIVATE_LINK what only the
# sources need.
function(zarvo_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;GENERATED;LINK;PRIVATE_LINK" ${ARGN})
  set(target Zarvo${name})
  if(ARG_SOURCES)
    add_library(${target} ${ARG_SOURCES})
    set(scope PUBLIC)
    zarvo_compile_options(${target})
    target_link_libraries(${target} PRIVATE ${ARG_PRIVATE_LINK})
    set_target_properties(${target} PROPERTIES
      VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  else()
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
  endif()
  add_library(Zarvo::${name} ALIAS ${target})
  target_sources(${target} ${scope}
    FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}" FILES ${ARG_HEADERS}
    FILE_SET generated TYPE HEADERS BASE_DIRS "${PROJECT_BINARY_DIR}/generated"
      FILES ${ARG_GENERATED})
  target_link_libraries(${target} ${scope} ${ARG_LINK})
  target_compile_features(${target} ${scope} cxx_std_20)
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
  set_property(GLOBAL APPEND PROPERTY ZARVO_LIBRARIES ${target})
endfunction()

# zarvo_test(FoundationTests SOURCES aTest.cpp LINK Zarvo::Foundation)
#
# A GoogleTest program; every case runs in a process of its own. The macros of the tests take the
# optimizer and the checks of undefined behaviour longer than all the rest: those are for the code
# under test.
function(zarvo_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} ZarvoTestSupport GTest::gmock GTest::gtest_main)
  zarvo_compile_options(${name})
  target_compile_options(${name} PRIVATE -O0)
  if(ZARVO_SANITIZE MATCHES "undefined")
    target_compile_options(${name} PRIVATE -fno-sanitize=undefined)
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 300)
endfunction()

# zarvo_bench(LoggingBench SOURCES LoggingBench.cpp LINK Zarvo::Logging)
function(zarvo_bench name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} benchmark::benchmark benchmark::benchmark_main)
  zarvo_compile_options(${name})
  set_property(GLOBAL APPEND PROPERTY ZARVO_BENCHMARKS ${name})
endfunction()

# zarvo_fuzz(wildcard SOURCES wildcard.cpp LINK Zarvo::Lang)
#
# A libFuzzer program over the seeds in fuzz/corpus/<name>.
function(zarvo_fuzz name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(fuzz_${name} ${ARG_SOURCES})
  target_link_libraries(fuzz_${name} PRIVATE ${ARG_LINK})
  zarvo_compile_options(fuzz_${name})
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
endfunction()
