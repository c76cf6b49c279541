# What every target of this project has in common.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(CMAKE_BINARY_DIR STREQUAL "${CMAKE_SOURCE_DIR}/build/debug")
  # Where editors look for them.
  file(CREATE_LINK build/debug/compile_commands.json ${CMAKE_SOURCE_DIR}/compile_commands.json SYMBOLIC)
endif()
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

# Empty, "address,undefined" or "thread".
set(QUOREL_SANITIZE "" CACHE STRING "Sanitizers to build with")

find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)

add_library(quorel_options INTERFACE)
target_include_directories(quorel_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(quorel_options INTERFACE
  -Wall -Wextra -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual)
target_link_libraries(quorel_options INTERFACE Threads::Threads)
if(QUOREL_SANITIZE)
  target_compile_options(quorel_options INTERFACE -fsanitize=${QUOREL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(quorel_options INTERFACE -fsanitize=${QUOREL_SANITIZE})
endif()

# Headers that nearly every file reads are parsed once for all. Not in releases, so that a missing include shows there, nor
# with a compiler cache, which would find nothing any more of what another folder has compiled.
if(CMAKE_BUILD_TYPE STREQUAL "Debug" AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(QUOREL_PRECOMPILES ON)
  set(headers <algorithm> <chrono> <cstdint> <functional> <map> <memory> <optional> <string> <string_view> <utility> <vector>)
  file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/generated/main.cpp CONTENT "int main() {}\n")
  add_library(quorel_library_headers STATIC ${CMAKE_BINARY_DIR}/generated/main.cpp)
  target_link_libraries(quorel_library_headers PRIVATE quorel_options)
  target_precompile_headers(quorel_library_headers PRIVATE ${headers})
  if(QUOREL_TESTS)
    find_package(GTest REQUIRED)
    add_executable(quorel_test_headers ${CMAKE_BINARY_DIR}/generated/main.cpp)
    target_link_libraries(quorel_test_headers PRIVATE quorel_options GTest::gtest)
    target_precompile_headers(quorel_test_headers PRIVATE ${headers} <gtest/gtest.h>)
  endif()
endif()

# quorel_library(name source...): a static library that may end up inside the pane's bundle.
function(quorel_library name)
  add_library(${name} STATIC ${ARGN})
  target_link_libraries(${name} PUBLIC quorel_options)
  if(QUOREL_PRECOMPILES)
    target_precompile_headers(${name} REUSE_FROM quorel_library_headers)
  endif()
endfunction()

# quorel_test(name SOURCES ... [LIBRARIES ...] [WRAPPER command ...]): one GoogleTest program, run as one ctest
# entry, inside the wrapper command where one is given.
function(quorel_test name)
  cmake_parse_arguments(TEST "" "TIMEOUT" "SOURCES;LIBRARIES;WRAPPER" ${ARGN})
  find_package(GTest REQUIRED)
  add_executable(${name} ${TEST_SOURCES})
  target_link_libraries(${name} PRIVATE ${TEST_LIBRARIES} quorel_options GTest::gtest_main)
  if(QUOREL_PRECOMPILES)
    target_precompile_headers(${name} REUSE_FROM quorel_test_headers)
  endif()
  add_test(NAME ${name} COMMAND ${TEST_WRAPPER} $<TARGET_FILE:${name}>)
  if(NOT TEST_TIMEOUT)
    set(TEST_TIMEOUT 120)
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${TEST_TIMEOUT})
endfunction()

# quorel_script_test(name script [POLKIT] [TIMEOUT seconds] argument...): a test in Python, with what such tests share
# to be imported; inside a mount namespace of its own where it starts polkitd, which takes root.
function(quorel_script_test name script)
  cmake_parse_arguments(TEST "POLKIT" "TIMEOUT" "" ${ARGN})
  set(namespace)
  if(TEST_POLKIT)
    set(namespace unshare --mount)
  endif()
  if(NOT TEST_TIMEOUT)
    set(TEST_TIMEOUT 300)
  endif()
  add_test(NAME ${name} COMMAND ${namespace} /usr/bin/python3 ${CMAKE_CURRENT_SOURCE_DIR}/${script}
    ${TEST_UNPARSED_ARGUMENTS})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${TEST_TIMEOUT} SKIP_RETURN_CODE 77
    ENVIRONMENT PYTHONPATH=${CMAKE_SOURCE_DIR}/tests/support:${CMAKE_SOURCE_DIR}/harness)
endfunction()
