# Builds for macOS on another system, with clang and lld (Debian: clang-19 lld-19 llvm-19 of bookworm or later).
#   cmake --toolchain tools/cmake/macos.cmake -DHL_MACOS_ARCHITECTURE=arm64 ...
# The sysroot is the folder named by CMAKE_OSX_SYSROOT or by the environment's HUSHLET_MACOS_SYSROOT: the SDK of an Xcode, or
# what tools/macos-sysroot has laid.
set(HL_MACOS_ARCHITECTURE arm64 CACHE STRING "arm64 or x86_64")
set(HL_LLVM_VERSION 19 CACHE STRING "The version at the end of the tools' names")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES HL_MACOS_ARCHITECTURE HL_LLVM_VERSION)

if(NOT CMAKE_OSX_SYSROOT)
  set(CMAKE_OSX_SYSROOT "$ENV{HUSHLET_MACOS_SYSROOT}" CACHE PATH "The macOS SDK")
endif()
if(NOT IS_DIRECTORY "${CMAKE_OSX_SYSROOT}/System/Library/Frameworks/AppKit.framework")
  message(FATAL_ERROR "No macOS sysroot: name one with CMAKE_OSX_SYSROOT or HUSHLET_MACOS_SYSROOT.")
endif()

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR ${HL_MACOS_ARCHITECTURE})
set(CMAKE_OSX_DEPLOYMENT_TARGET 13.0 CACHE STRING "")
set(target ${HL_MACOS_ARCHITECTURE}-apple-macos13.0)
foreach(language C CXX OBJCXX)
  set(CMAKE_${language}_COMPILER_TARGET ${target})
endforeach()
find_program(CMAKE_C_COMPILER clang-${HL_LLVM_VERSION} REQUIRED)
find_program(CMAKE_CXX_COMPILER clang++-${HL_LLVM_VERSION} REQUIRED)
set(CMAKE_OBJCXX_COMPILER ${CMAKE_CXX_COMPILER})
find_program(CMAKE_AR llvm-ar-${HL_LLVM_VERSION} REQUIRED)
find_program(CMAKE_RANLIB llvm-ranlib-${HL_LLVM_VERSION} REQUIRED)
find_program(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool-${HL_LLVM_VERSION} REQUIRED)
set(CMAKE_EXE_LINKER_FLAGS_INIT -fuse-ld=lld)

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
