# Third-party libraries, all from Debian's packages (scripts/setup installs them).
find_package(Threads REQUIRED)
find_package(Boost 1.81 REQUIRED COMPONENTS json regex CONFIG)
find_package(TBB REQUIRED)
find_package(spdlog REQUIRED)
find_package(Eigen3 3.4 REQUIRED NO_MODULE)
find_package(SQLite3 REQUIRED)
find_package(ZLIB REQUIRED)
find_package(pugixml REQUIRED)
# The online material library: transfers (libcurl) and the SHA-256 of downloads (OpenSSL's libcrypto).
find_package(CURL REQUIRED)
find_package(OpenSSL REQUIRED COMPONENTS Crypto)
# The document file's zip container. Debian's libzip config also imports the command-line tools
# (a separate package that need not be installed) and fails without them, so the library is found
# directly and given the config's target name.
if(NOT TARGET libzip::zip)
  find_path(LIBZIP_INCLUDE_DIR zip.h REQUIRED)
  find_library(LIBZIP_LIBRARY zip REQUIRED)
  add_library(libzip::zip UNKNOWN IMPORTED)
  set_target_properties(libzip::zip PROPERTIES
    IMPORTED_LOCATION ${LIBZIP_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${LIBZIP_INCLUDE_DIR})
endif()
# The embedded JavaScript engine of the text commands; Debian ships no CMake config for it.
if(NOT TARGET Duktape::duktape)
  find_path(DUKTAPE_INCLUDE_DIR duktape.h REQUIRED)
  find_library(DUKTAPE_LIBRARY duktape REQUIRED)
  add_library(Duktape::duktape UNKNOWN IMPORTED)
  set_target_properties(Duktape::duktape PROPERTIES
    IMPORTED_LOCATION ${DUKTAPE_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${DUKTAPE_INCLUDE_DIR})
endif()
# The HTTP server of `kx library serve` and of the download tests. Debian builds the library with
# TLS and compression, and its classes differ with those switches: users must compile with the same.
if(NOT TARGET httplib::httplib)
  find_path(HTTPLIB_INCLUDE_DIR httplib.h REQUIRED)
  find_library(HTTPLIB_LIBRARY cpp-httplib REQUIRED)
  add_library(httplib::httplib UNKNOWN IMPORTED)
  set_target_properties(httplib::httplib PROPERTIES
    IMPORTED_LOCATION ${HTTPLIB_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${HTTPLIB_INCLUDE_DIR}
    INTERFACE_COMPILE_DEFINITIONS "CPPHTTPLIB_OPENSSL_SUPPORT;CPPHTTPLIB_ZLIB_SUPPORT;CPPHTTPLIB_BROTLI_SUPPORT")
endif()
if(KX_BUILD_TESTS)
  find_package(GTest REQUIRED)
endif()
if(KX_BUILD_BENCH)
  find_package(benchmark REQUIRED)
endif()
# The embedded interpreter and the kxtypes module: Debian's python3 and pybind11. The system's
# interpreter unless one is named: a python3 found first on PATH (a per-user installation) would
# give a module that the system python3 cannot import.
if(NOT Python3_EXECUTABLE AND EXISTS /usr/bin/python3)
  set(Python3_EXECUTABLE /usr/bin/python3)
endif()
find_package(Python3 3.9 REQUIRED COMPONENTS Interpreter Development.Module Development.Embed)
find_package(pybind11 2.6 CONFIG REQUIRED)
