# kx_add_library(<target> MODULE <name> SOURCES ... [PUBLIC_DEPS ...] [PRIVATE_DEPS ...] [INCLUDE <dir>])
# A platform or product library: shared, with its public headers under INCLUDE and the name of
# the module that assertions report (KX_MODULE_NAME).
function(kx_add_library target)
  cmake_parse_arguments(ARG "" "MODULE;INCLUDE" "SOURCES;PUBLIC_DEPS;PRIVATE_DEPS" ${ARGN})
  add_library(${target} SHARED ${ARG_SOURCES})
  if(ARG_INCLUDE)
    # The same headers are installed under <prefix>/include (cmake/KxInstall.cmake).
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${ARG_INCLUDE}> $<INSTALL_INTERFACE:include>)
  endif()
  target_compile_definitions(${target} PRIVATE KX_MODULE_NAME="${ARG_MODULE}")
  target_link_libraries(${target} PUBLIC ${ARG_PUBLIC_DEPS} PRIVATE ${ARG_PRIVATE_DEPS})
endfunction()

# kx_add_test(<name> SOURCES ... LIBS ...): one GoogleTest executable, registered with ctest.
# Every test program gets a private user directory and this build's content from its own test
# environment (tests/support/TestEnvironment.cpp), not from ctest: a list of environment variables
# does not survive gtest_discover_tests' property forwarding.
function(kx_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES} ${PROJECT_SOURCE_DIR}/tests/support/TestEnvironment.cpp)
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} kx_testsupport GTest::gtest GTest::gmock GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE KX_MODULE_NAME="${name}"
    KX_TEST_DATA_DIR="${PROJECT_SOURCE_DIR}/tests/data")
  # On the one source that needs it: a build-folder path in every test's flags would keep
  # compiler caches from sharing objects between build folders.
  set_source_files_properties(${PROJECT_SOURCE_DIR}/tests/support/TestEnvironment.cpp TARGET_DIRECTORY ${name}
    PROPERTIES COMPILE_DEFINITIONS "KX_TEST_CONTENT_DIR=\"${PROJECT_BINARY_DIR}/content\"")
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60)
endfunction()
