# What every room shares: the language, the warnings, where output goes, and how a test is declared.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)

# The libraries find each other beside themselves, as zq_install_... sees to, and programs find them from the folder
# beside theirs, in the build folder as after installation. Nobody looks in more folders than that: in each the loader
# tries a dozen subfolders for the processor's kind.
# Both are one text: CMake would else pad the shorter one with an empty entry, by which the loader
# looks for every library in the working folder first.
set(CMAKE_INSTALL_RPATH "$ORIGIN/../lib")
if(NOT CMAKE_INSTALL_LIBDIR STREQUAL "lib")
  list(PREPEND CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
endif()
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_compile_options(-Wall -Wextra -Werror -Wshadow -Wpointer-arith -Wformat=2 -Wundef -Wvla
                    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
                    $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual>)
add_compile_definitions(_GNU_SOURCE)

# ZQ_SANITIZE: "address,undefined", "thread", or empty.
set(ZQ_SANITIZE "" CACHE STRING "sanitizers for everything that is built")
if(ZQ_SANITIZE)
  add_compile_options(-fsanitize=${ZQ_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=${ZQ_SANITIZE})
  # What the sanitizers add makes g++ see uninitialized members in <regex> that are none.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  # What a preloaded library must be preceded by: the sanitizer's runtime wants to be first.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    if(ZQ_SANITIZE MATCHES "address")
      set(_runtime libasan.so)
    elseif(ZQ_SANITIZE MATCHES "thread")
      set(_runtime libtsan.so)
    endif()
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${_runtime}
                    OUTPUT_VARIABLE ZQ_SANITIZER_RUNTIME OUTPUT_STRIP_TRAILING_WHITESPACE)
    get_filename_component(ZQ_SANITIZER_RUNTIME ${ZQ_SANITIZER_RUNTIME} REALPATH)
  endif()
endif()

option(ZQ_COVERAGE "count executed lines" OFF)
if(ZQ_COVERAGE)
  # Not --coverage, which a target that must not count cannot take back.
  add_compile_options(-fprofile-arcs -ftest-coverage -O0)
  add_link_options(--coverage)
endif()

option(ZQ_FUZZ "build the fuzz targets with libFuzzer (clang only)" OFF)
if(ZQ_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

option(ZQ_BUILD_TESTS "build the tests and benchmarks" ON)
if(ZQ_BUILD_TESTS)
  find_package(GTest REQUIRED)
  find_package(benchmark REQUIRED)

  # A program like every test program, so that its precompiled headers serve them all.
  add_executable(zq_test_headers ${PROJECT_SOURCE_DIR}/tests/precompiled/empty_main.cpp)
  target_link_libraries(zq_test_headers PRIVATE GTest::gmock GTest::gtest)
  target_compile_options(zq_test_headers PRIVATE -O0 -g1)
  target_precompile_headers(zq_test_headers PRIVATE ${PROJECT_SOURCE_DIR}/tests/precompiled/test_headers.h)
endif()

# A test's environment. Suppressions name each leak that the behaviour demands, with its reason.
set(ZQ_TEST_ENVIRONMENT
    "ZQ_TRACE=off"
    "ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1:check_initialization_order=1"
    "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0"
    "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1"
    "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/tsan.supp:halt_on_error=1:second_deadlock_stack=1")

# zq_test(NAME files... [LIBS libs...] [SLOW] [DEVICE] [TIMEOUT seconds])
# One GoogleTest program, one ctest entry. SLOW keeps it out of the quick run. DEVICE runs it on a simulated device
# of its own, where "/proc/blctrl" and its like are that device's.
function(zq_test name)
  if(NOT ZQ_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "SLOW;DEVICE" "TIMEOUT" "LIBS" ${ARGN})
  add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} zq_test_support GTest::gmock GTest::gtest)
  if(ARG_DEVICE)
    target_link_libraries(${name} PRIVATE zq_device_main)
    if(TARGET zqsim)
      add_dependencies(${name} zqsim)
    endif()
  else()
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
  endif()
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  # Tests wait for the compiler more than for the processor.
  target_compile_options(${name} PRIVATE -O0 -g1)
  target_precompile_headers(${name} REUSE_FROM zq_test_headers)
  add_test(NAME ${name} COMMAND ${name})
  zq_test_properties(${name} ${ARGN})
endfunction()

# zq_script_test(NAME COMMAND words... [SLOW] [TIMEOUT seconds]): a test that is a shell command.
function(zq_script_test name)
  if(NOT ZQ_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "SLOW" "TIMEOUT" "COMMAND" ${ARGN})
  add_test(NAME ${name} COMMAND ${ARG_COMMAND})
  zq_test_properties(${name} ${ARGN})
endfunction()

function(zq_test_properties name)
  cmake_parse_arguments(ARG "SLOW;DEVICE" "TIMEOUT" "LIBS;COMMAND" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  if(ZQ_SANITIZE)
    math(EXPR ARG_TIMEOUT "${ARG_TIMEOUT} * 3")
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT} ENVIRONMENT "${ZQ_TEST_ENVIRONMENT}")
  if(ARG_SLOW)
    set_tests_properties(${name} PROPERTIES LABELS slow)
  endif()
endfunction()

# zq_bench(NAME files... [LIBS libs...]): one Google Benchmark program, run by `make bench`.
function(zq_bench name)
  if(NOT ZQ_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
  add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} benchmark::benchmark)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
endfunction()

# zq_fuzz(NAME files... [LIBS libs...]): with ZQ_FUZZ a libFuzzer target; otherwise a test that runs the seeds of
# fuzz/corpus/NAME once, so that a found crash stays found.
function(zq_fuzz name)
  cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
  if(ZQ_FUZZ)
    add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    if(NOT TARGET fuzz_targets)
      add_custom_target(fuzz_targets)
    endif()
    add_dependencies(fuzz_targets ${name})
  elseif(ZQ_BUILD_TESTS)
    add_executable(${name} ${ARG_UNPARSED_ARGUMENTS} ${PROJECT_SOURCE_DIR}/fuzz/replay_main.cpp)
    add_test(NAME ${name} COMMAND ${name} ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
    zq_test_properties(${name})
  else()
    return()
  endif()
  target_link_libraries(${name} PRIVATE ${ARG_LIBS})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/fuzz)
endfunction()
