# Cross-builds for 64-bit Arm with clang 19 and libc++ 19. `scripts/setup arm64` unpacks Debian's
# arm64 packages into build/sysroot-arm64. Programs run under qemu.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(CMAKE_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/sysroot-arm64)
cmake_path(NORMAL_PATH CMAKE_SYSROOT)
set(CMAKE_C_COMPILER clang-19)
set(CMAKE_CXX_COMPILER clang++-19)
set(CMAKE_C_COMPILER_TARGET aarch64-linux-gnu)
set(CMAKE_CXX_COMPILER_TARGET aarch64-linux-gnu)

set(libcxx ${CMAKE_SYSROOT}/usr/lib/llvm-19)
# The name of the standard library is for the linker, its folder for the compiler.
set(CMAKE_CXX_FLAGS_INIT
  "-stdlib=libc++ -stdlib++-isystem \"${libcxx}/include/c++/v1\" -Wno-unused-command-line-argument")
foreach(kind EXE SHARED)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-fuse-ld=lld-19 \"-L${libcxx}/lib\"")
endforeach()

set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64-static -L ${CMAKE_SYSROOT})
