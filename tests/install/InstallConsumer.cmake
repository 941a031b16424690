# The installed product as another project sees it (run by ctest as install.consumer):
#   cmake -DKX_BINARY_DIR=<build> -DKX_SOURCE_DIR=<sources> -DKX_WORK_DIR=<scratch>
#         [-DKX_LIBDIR=lib] [-DKX_GENERATOR=Ninja] [-DKX_CXX_COMPILER=g++] [-DKX_LAUNCHER=ccache]
#         [-DKX_PYTHONDIR=lib/python3.11/dist-packages -DKX_PYTHON=/usr/bin/python3] -P InstallConsumer.cmake
#
# 1. installs the build into a fresh prefix under KX_WORK_DIR;
# 2. checks that no installed header or package file names the source or build tree, and that the
#    libraries and kx find their neighbours through $ORIGIN;
# 3. runs the installed kx console;
# 4. configures, builds and runs tests/install/consumer with find_package(KxTypes 10), which also
#    compiles every <kx/...> header on its own;
# 5. compiles the same consumer with one plain compiler command from pkg-config and runs it;
# 6. imports the installed kxtypes into python3 and reads a material of the installed content.
# The consumers run without KX_CONTENT_DIR (they must find the prefix's content by themselves) and
# with KX_USER_DIR in the scratch folder. The scratch folder is removed when everything passed.

cmake_minimum_required(VERSION 3.25)

foreach(required KX_BINARY_DIR KX_SOURCE_DIR KX_WORK_DIR)
  if(NOT ${required})
    message(FATAL_ERROR "InstallConsumer.cmake needs -D${required}=...")
  endif()
endforeach()
if(NOT KX_CXX_COMPILER)
  set(KX_CXX_COMPILER g++)
endif()
if(NOT KX_LIBDIR)
  set(KX_LIBDIR lib)
endif()
set(consumer_source ${CMAKE_CURRENT_LIST_DIR}/consumer)
set(prefix ${KX_WORK_DIR}/prefix)
set(libdir ${prefix}/${KX_LIBDIR})
set(content ${prefix}/share/kx/content)

# Runs a command, stops the test with its output when it fails.
function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${what} failed (${status}):\n${ARGN}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

string(TIMESTAMP started "%s")
macro(step name)
  string(TIMESTAMP now "%s")
  math(EXPR elapsed "${now} - ${started}")
  message(STATUS "[${elapsed} s] ${name}")
endmacro()

if(NOT EXISTS ${KX_BINARY_DIR}/content/libraries/PhysicalMaterialAdvanced.tvrnlib)
  message(FATAL_ERROR "${KX_BINARY_DIR} has no generated content: build it first (target kx_content, part of all)")
endif()

file(REMOVE_RECURSE ${KX_WORK_DIR})
file(MAKE_DIRECTORY ${KX_WORK_DIR}/user ${KX_WORK_DIR}/scratch)

step("install into ${prefix}")
run("cmake --install" ${CMAKE_COMMAND} --install ${KX_BINARY_DIR} --prefix ${prefix})

step("installed files")
foreach(expected
    bin/kx ${KX_LIBDIR}/libKxTypes10.so ${KX_LIBDIR}/libkx_core.so ${KX_LIBDIR}/libkx_base.so
    ${KX_LIBDIR}/libkx_datamodel.so ${KX_LIBDIR}/libkx_geometry.so ${KX_LIBDIR}/libkx_assets.so
    ${KX_LIBDIR}/cmake/KxTypes/KxTypesConfig.cmake ${KX_LIBDIR}/cmake/KxTypes/KxTypesConfigVersion.cmake
    ${KX_LIBDIR}/pkgconfig/kxtypes.pc include/kx/ValueTypes.h include/Types/Geometry/Rect2.h include/base/Paths.h
    share/kx/content/libraries/PhysicalMaterialAdvanced.tvrnlib share/kx/content/libraries/netfs.mounts
    share/kx/content/strings/en-US/KxTypes.xml share/kx/content/strings/de-DE/KxTypes.xml
    share/kx/content/MaterialLibraryHistory.xml)
  if(NOT EXISTS ${prefix}/${expected})
    message(FATAL_ERROR "not installed: ${expected}")
  endif()
endforeach()
# The build's content folder is also a CMake binary folder: none of that belongs to the content.
file(GLOB_RECURSE content_files LIST_DIRECTORIES true RELATIVE ${content} ${content}/*)
list(FILTER content_files INCLUDE REGEX "(^|/)(CMakeFiles|cmake_install.cmake|CTestTestfile.cmake|Makefile|kx_content_generator|lint-report.txt)$")
if(content_files)
  message(FATAL_ERROR "build files installed as content: ${content_files}")
endif()
file(GLOB_RECURSE installed_headers LIST_DIRECTORIES true ${prefix}/include/*)
set(internal_headers ${installed_headers})
list(FILTER internal_headers INCLUDE REGEX "/internal(/|$)")
if(internal_headers)
  message(FATAL_ERROR "internal headers installed: ${internal_headers}")
endif()
file(GLOB_RECURSE package_texts ${prefix}/include/* ${libdir}/cmake/* ${libdir}/pkgconfig/*)
foreach(text IN LISTS package_texts)
  file(READ ${text} body)
  foreach(tree ${KX_SOURCE_DIR} ${KX_BINARY_DIR})
    string(FIND "${body}" "${tree}" at)
    if(NOT at EQUAL -1)
      message(FATAL_ERROR "${text} names the tree it was built from (${tree})")
    endif()
  endforeach()
endforeach()
file(GLOB libraries ${libdir}/lib*.so)
foreach(library IN LISTS libraries ${prefix}/bin/kx)
  file(READ_ELF ${library} RUNPATH runpath RPATH rpath)
  set(expected "$ORIGIN")
  if(library MATCHES "/bin/kx$")
    set(expected "$ORIGIN/../${KX_LIBDIR}")
  endif()
  if(NOT "${runpath}${rpath}" STREQUAL expected)
    message(FATAL_ERROR "${library}: run path \"${runpath}${rpath}\", expected \"${expected}\"")
  endif()
endforeach()

# Nothing may lead the programs back to the build tree: no content folder from the environment, no
# library path. The defaults (desktop edition, English) are what the checks expect.
foreach(variable KX_CONTENT_DIR LD_LIBRARY_PATH KX_EDITION KX_LANG)
  unset(ENV{${variable}})
endforeach()
set(ENV{KX_USER_DIR} ${KX_WORK_DIR}/user)

step("installed kx console")
run("installed kx" ${prefix}/bin/kx materials list --limit 1)
if(NOT output MATCHES "CorvexMaterial")
  message(FATAL_ERROR "the installed kx listed no material from the installed content:\n${output}")
endif()

step("consumer with find_package(KxTypes 10)")
set(configure_options -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=${KX_CXX_COMPILER})
if(KX_GENERATOR)
  list(APPEND configure_options -G ${KX_GENERATOR})
endif()
if(KX_LAUNCHER)
  list(APPEND configure_options -DCMAKE_CXX_COMPILER_LAUNCHER=${KX_LAUNCHER})
endif()
run("consumer configure" ${CMAKE_COMMAND} -S ${consumer_source} -B ${KX_WORK_DIR}/consumer ${configure_options})
file(STRINGS ${KX_WORK_DIR}/consumer/CMakeCache.txt found_package REGEX "^KxTypes_DIR:")
if(NOT found_package STREQUAL "KxTypes_DIR:PATH=${libdir}/cmake/KxTypes")
  message(FATAL_ERROR "the consumer found another KxTypes: ${found_package}")
endif()
run("consumer build" ${CMAKE_COMMAND} --build ${KX_WORK_DIR}/consumer)
run("consumer (CMake)" ${KX_WORK_DIR}/consumer/kx_consumer ${content} ${KX_WORK_DIR}/scratch)
message(STATUS "${output}")

step("consumer with pkg-config")
set(ENV{PKG_CONFIG_PATH} ${libdir}/pkgconfig)
run("pkg-config" pkg-config --cflags --libs kxtypes)
separate_arguments(flags UNIX_COMMAND "${output}")
run("consumer compile (pkg-config)" ${KX_LAUNCHER} ${KX_CXX_COMPILER} -o ${KX_WORK_DIR}/kx_consumer_pc
  ${consumer_source}/main.cpp ${flags})
set(ENV{LD_LIBRARY_PATH} ${libdir})
file(REMOVE_RECURSE ${KX_WORK_DIR}/scratch)
file(MAKE_DIRECTORY ${KX_WORK_DIR}/scratch)
run("consumer (pkg-config)" ${KX_WORK_DIR}/kx_consumer_pc ${content} ${KX_WORK_DIR}/scratch)
message(STATUS "${output}")

if(KX_PYTHONDIR)
  step("python3: import kxtypes")
  unset(ENV{LD_LIBRARY_PATH})
  set(ENV{PYTHONPATH} ${prefix}/${KX_PYTHONDIR})
  if(NOT EXISTS ${prefix}/${KX_PYTHONDIR}/kxtypes.pyi)
    message(FATAL_ERROR "the type stubs of kxtypes are not installed")
  endif()
  run("python3 import kxtypes" ${KX_PYTHON} ${CMAKE_CURRENT_LIST_DIR}/import_kxtypes.py)
  if(NOT output MATCHES "^${prefix}/${KX_PYTHONDIR}/kxtypes.*Steel.* 0.5")
    message(FATAL_ERROR "the installed kxtypes answered:\n${output}")
  endif()
  message(STATUS "${output}")
endif()

step("passed")
file(REMOVE_RECURSE ${KX_WORK_DIR})
