# Installation: the libraries, their public headers, the generated content and the kx console under
# one prefix, with a CMake package (find_package(KxTypes), targets KxTypes::…) and a pkg-config file
# (kxtypes). Nothing installed names the source or the build tree, and the prefix can be moved:
# the libraries and kx find each other through $ORIGIN, the package files locate the prefix from
# their own folder, and libkx_base finds the content relative to itself (base/Paths.h).
#
#   <prefix>/bin/kx
#   <prefix>/<libdir>/libKxTypes10.so, libkx_{core,base,datamodel,geometry,assets}.so
#   <prefix>/<libdir>/cmake/KxTypes/   KxTypesConfig.cmake, ...ConfigVersion.cmake, ...Targets*.cmake
#   <prefix>/<libdir>/pkgconfig/kxtypes.pc
#   <prefix>/include/kx/               one header per class family (<kx/ValueTypes.h>, ...)
#   <prefix>/include/Types/ core/ base/ python/ datamodel/ geometry/ assets/   what those include
#   <prefix>/share/kx/content/         libraries/ (standard material libraries), strings/
#   <prefix>/<KX_INSTALL_PYTHONDIR>/   kxtypes.cpython-*.so and kxtypes.pyi (lib/python3.X/dist-packages:
#                                      on the system python3's path for the prefixes /usr/local and /usr)
#
# Included by the top-level CMakeLists.txt after every target exists.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(KX_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/KxTypes)
set(KX_INSTALL_CONTENTDIR ${CMAKE_INSTALL_DATADIR}/kx/content)

# Target and the name it is exported under (KxTypes::<name>), bottom layer first.
set(KX_INSTALLED_LIBRARIES
  kx_core core
  kx_base base
  kx_geometry geometry
  kx_datamodel datamodel
  kx_assets assets
  kx_python python
  KxTypes10 KxTypes10
  KxTypesPython10 KxTypesPython10)

# Every library sits beside the others in <libdir>, so $ORIGIN finds them; kx in <bindir> looks in
# <libdir> relative to itself. Both survive moving the whole prefix.
file(RELATIVE_PATH KX_BIN_TO_LIB ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH KX_LIB_TO_CONTENT ${CMAKE_INSTALL_FULL_LIBDIR} ${CMAKE_INSTALL_FULL_DATADIR}/kx/content)

set(KX_EXPORTED_TARGETS "")
while(KX_INSTALLED_LIBRARIES)
  list(POP_FRONT KX_INSTALLED_LIBRARIES target name)
  # The public headers need C++20, so consumers are compiled with it too.
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${name}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    INSTALL_RPATH "$ORIGIN")
  # The same names for a project that adds this tree with add_subdirectory.
  add_library(KxTypes::${name} ALIAS ${target})
  list(APPEND KX_EXPORTED_TARGETS ${target})
endwhile()
set_target_properties(kx PROPERTIES INSTALL_RPATH "$ORIGIN/${KX_BIN_TO_LIB}")

# The Python module goes where the python3 it was built for looks for modules of the prefix.
set(KX_INSTALL_PYTHONDIR "lib/python${Python3_VERSION_MAJOR}.${Python3_VERSION_MINOR}/dist-packages"
  CACHE STRING "Where kxtypes is installed, relative to the prefix")
file(RELATIVE_PATH KX_PYTHON_TO_LIB ${CMAKE_INSTALL_PREFIX}/${KX_INSTALL_PYTHONDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set_target_properties(kxtypes PROPERTIES INSTALL_RPATH "$ORIGIN/${KX_PYTHON_TO_LIB}")
install(TARGETS kxtypes LIBRARY DESTINATION ${KX_INSTALL_PYTHONDIR})
install(FILES ${PROJECT_SOURCE_DIR}/python/kxtypes.pyi DESTINATION ${KX_INSTALL_PYTHONDIR})

# Installed content is found from libkx_base's own folder (base/Paths.cpp).
target_compile_definitions(kx_base PRIVATE KX_CONTENT_FROM_LIBDIR="${KX_LIB_TO_CONTENT}")
target_link_libraries(kx_base PRIVATE ${CMAKE_DL_LIBS})

install(TARGETS ${KX_EXPORTED_TARGETS} EXPORT KxTypesTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS kx RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

# Headers keep the layout the sources include them by (<Types/...>, <base/...>). Headers under an
# internal/ folder are the libraries' own business: no installed header includes one.
foreach(platform core base python geometry datamodel assets)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/platform/${platform}/include/
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILES_MATCHING PATTERN "*.h" PATTERN "internal" EXCLUDE)
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/Types/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Types
  FILES_MATCHING PATTERN "*.h" PATTERN "internal" EXCLUDE PATTERN "Resources" EXCLUDE)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kx DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# The content (kx_content, kx_strings, the files content/ copies), as laid out in the build tree.
# The build's content/ folder is also the binary folder of content/CMakeLists.txt, so the build
# system's own files and the generator stay behind, and so does the generator's lint report.
install(DIRECTORY ${PROJECT_BINARY_DIR}/content/
  DESTINATION ${KX_INSTALL_CONTENTDIR}
  PATTERN "CMakeFiles" EXCLUDE
  PATTERN "cmake_install.cmake" EXCLUDE
  PATTERN "CTestTestfile.cmake" EXCLUDE
  PATTERN "Makefile" EXCLUDE
  PATTERN "kx_content_generator" EXCLUDE
  PATTERN "lint-report.txt" EXCLUDE)

# The CMake package.
install(EXPORT KxTypesTargets
  NAMESPACE KxTypes::
  DESTINATION ${KX_INSTALL_CMAKEDIR})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/KxTypesConfig.cmake.in
  ${PROJECT_BINARY_DIR}/package/KxTypesConfig.cmake
  INSTALL_DESTINATION ${KX_INSTALL_CMAKEDIR}
  PATH_VARS CMAKE_INSTALL_INCLUDEDIR KX_INSTALL_CONTENTDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/KxTypesConfigVersion.cmake
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/package/KxTypesConfig.cmake
  ${PROJECT_BINARY_DIR}/package/KxTypesConfigVersion.cmake
  DESTINATION ${KX_INSTALL_CMAKEDIR})

# The pkg-config file locates the prefix from its own folder (${pcfiledir}), so it stays right for
# cmake --install --prefix and for a moved prefix.
file(RELATIVE_PATH KX_PC_TO_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" KX_PC_TO_PREFIX "${KX_PC_TO_PREFIX}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/kxtypes.pc.in ${PROJECT_BINARY_DIR}/package/kxtypes.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/package/kxtypes.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
