# The libraries that kvrctl, the simulated network and the tests use, under the same target names on
# every platform: CLI11::CLI11, fmt::fmt, nlohmann_json::nlohmann_json, toml++, GTest::gtest_main.
#
# For the machine itself they are Debian's packages. For another platform the header-only ones are
# the very same headers, each reached by a folder of its own, since /usr/include as a whole would
# bring the headers of the wrong system; GoogleTest is built from Debian's sources.

# An interface target over one folder of /usr/include.
function(add_headers_of_host target folder)
  set(own ${PROJECT_BINARY_DIR}/third_party/${target})
  file(MAKE_DIRECTORY ${own})
  file(CREATE_LINK /usr/include/${folder} ${own}/${folder} SYMBOLIC)
  add_library(${target} INTERFACE)
  target_include_directories(${target} SYSTEM INTERFACE ${own})
endfunction()

if(CMAKE_CROSSCOMPILING)
  add_headers_of_host(cli11 CLI)
  add_library(CLI11::CLI11 ALIAS cli11)
  add_headers_of_host(fmt fmt)
  target_compile_definitions(fmt INTERFACE FMT_HEADER_ONLY=1)
  add_library(fmt::fmt ALIAS fmt)
  add_library(fmt::fmt-header-only ALIAS fmt)
  add_headers_of_host(json nlohmann)
  add_library(nlohmann_json::nlohmann_json ALIAS json)
  add_headers_of_host(toml++ toml++)
  if(KVR_BUILD_TESTS)
    set(BUILD_GMOCK OFF)
    set(INSTALL_GTEST OFF)
    add_subdirectory(/usr/src/googletest third_party/googletest EXCLUDE_FROM_ALL)
  endif()
else()
  find_package(CLI11 REQUIRED)
  find_package(fmt REQUIRED)
  find_package(nlohmann_json REQUIRED)
  add_library(toml++ INTERFACE)
  if(KVR_BUILD_TESTS)
    find_package(GTest REQUIRED)
  endif()
endif()
