# The para-virtualised ARM target: armv7-a, Thumb-2, soft-float, little-endian, position independent.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR arm)

find_program(KV_CLANG NAMES clang clang-14 REQUIRED)
find_program(KV_CLANGXX NAMES clang++ clang++-14 REQUIRED)
find_program(KV_LLD NAMES ld.lld ld.lld-14 REQUIRED)

set(CMAKE_C_COMPILER ${KV_CLANG})
set(CMAKE_CXX_COMPILER ${KV_CLANGXX})
set(CMAKE_ASM_COMPILER ${KV_CLANG})
set(KV_TARGET_TRIPLE armv7a-none-eabi)
set(CMAKE_C_COMPILER_TARGET ${KV_TARGET_TRIPLE})
set(CMAKE_CXX_COMPILER_TARGET ${KV_TARGET_TRIPLE})
set(CMAKE_ASM_COMPILER_TARGET ${KV_TARGET_TRIPLE})

set(KV_ARCH_FLAGS "-mthumb -march=armv7-a -mfloat-abi=soft -fPIC -Wno-unused-command-line-argument")
set(KV_CXX_FLAGS "-nostdlibinc -fno-exceptions -fno-rtti -fno-threadsafe-statics -fno-unwind-tables -fno-asynchronous-unwind-tables")
set(CMAKE_C_FLAGS_INIT "${KV_ARCH_FLAGS} -nostdlibinc")
set(CMAKE_CXX_FLAGS_INIT "${KV_ARCH_FLAGS} ${KV_CXX_FLAGS}")
set(CMAKE_ASM_FLAGS_INIT "${KV_ARCH_FLAGS}")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld -nostdlib -Wl,--build-id=none")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-fuse-ld=lld -nostdlib -Wl,--build-id=none")

# Programs are hosted C and C++ (main is special) on this library's headers and the compiler's;
# the library itself adds -ffreestanding. Nothing from the build machine's libraries or headers may leak into the target.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

# For programs of one's own: give KV_ROOT (the source tree, for the headers) and KV_LIB_DIR
# (where the build put libc.so, libdl.so and libkvc_front.a), then
#   kv_user_program(myprog main.c other.c)
# links a position-independent program with the ISO C front doors beside libc.so.
function(kv_user_program name)
  add_executable(${name} ${ARGN})
  target_include_directories(${name} PRIVATE ${KV_ROOT}/libc/include)
  target_link_options(${name} PRIVATE -Wl,-pie -Wl,-e,main)
  target_link_libraries(${name} PRIVATE ${KV_LIB_DIR}/libkvc_front.a ${KV_LIB_DIR}/libc.so
                                        ${KV_LIB_DIR}/libdl.so)
endfunction()
