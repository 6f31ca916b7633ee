# Helpers shared by the subsystem, test, benchmark and fuzz folders.

# taleloom_library(NAME [DEPS libs...]): a static library of every .cpp
# in DIR (native/ included), public include root at the repository top.
function(taleloom_library name)
  cmake_parse_arguments(ARG "" "" "DEPS" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS
       ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/testing/")
  if(sources)
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${ARG_DEPS})
  else()
    # A subsystem that has no code yet.
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} INTERFACE ${ARG_DEPS})
  endif()
endfunction()

# Test programs are compiled without optimisation and parse GoogleTest and
# the standard library once per program through a precompiled header: most
# of a test file's compile time went into optimising and into reading those
# headers, while the code under test stays as optimised as the build asks.
function(taleloom_test_compile_options target)
  target_precompile_headers(${target} PRIVATE
    <gtest/gtest.h> <algorithm> <cmath> <cstdint> <cstring> <functional>
    <map> <memory> <set> <string> <vector>)
  target_compile_options(${target} PRIVATE -O0)
endfunction()

# taleloom_test_suite(NAME LIBS libs...): one GoogleTest program per
# test folder. Files under a gtk/ subfolder form a second program that needs a
# display and runs under xvfb-run.
function(taleloom_test_suite name)
  cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(sources)
    add_executable(${name}_tests ${sources})
    target_link_libraries(${name}_tests PRIVATE ${ARG_LIBS} taleloom_test_main)
    taleloom_test_compile_options(${name}_tests)
    gtest_discover_tests(${name}_tests DISCOVERY_MODE PRE_TEST
      DISCOVERY_TIMEOUT 60
      PROPERTIES ENVIRONMENT "TALELOOM_AUDIO=null" TIMEOUT 300)
  endif()
  file(GLOB gtk_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/gtk/*.cpp)
  if(gtk_sources)
    add_executable(${name}_gtk_tests ${gtk_sources})
    target_link_libraries(${name}_gtk_tests PRIVATE ${ARG_LIBS} taleloom_test_main)
    taleloom_test_compile_options(${name}_gtk_tests)
    # A whole display program runs as one test under its own X server.
    add_test(NAME ${name}_gtk_tests
             COMMAND xvfb-run -a -s "-screen 0 1280x1024x24" $<TARGET_FILE:${name}_gtk_tests>)
    # xvfb-run -a races when two servers start at once; one at a time.
    set_tests_properties(${name}_gtk_tests PROPERTIES RESOURCE_LOCK x_server
      ENVIRONMENT "TALELOOM_AUDIO=null;NO_AT_BRIDGE=1;TALELOOM_TEST_SOURCE_DIR=${PROJECT_SOURCE_DIR}" TIMEOUT 600)
  endif()
endfunction()
