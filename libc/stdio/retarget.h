// The retarget functions: the stream engine's only way to the system side, by handle.
// Transfer results count the bytes NOT moved; _sys_read adds kSysEofBit for end of file.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "support/export.h"

namespace kv::stdio {
constexpr int32_t kSysEofBit = static_cast<int32_t>(0x80000000u);

// Open-mode bits the engine builds from a mode string.
constexpr int kModeBinary = 0x1;
constexpr int kModeUpdate = 0x2;
constexpr int kModeWrite = 0x4;
constexpr int kModeAppend = 0x8;
constexpr int kModeText = 0x10;

// The console handles, never opened or closed on the system side.
constexpr int kStdinHandle = 0;
constexpr int kStdoutHandle = 1;
constexpr int kStderrHandle = 2;
inline bool is_console(int handle) { return handle >= 0 && handle <= 2; }
} // namespace kv::stdio

KV_FUNCTION(protected, int, _sys_open, (const char *name, int mode));
KV_FUNCTION(protected, int, _sys_close, (int handle));
KV_FUNCTION(protected, int, _sys_read, (int handle, unsigned char *buffer, unsigned length, int mode));
KV_FUNCTION(protected, int, _sys_write,
            (int handle, const unsigned char *buffer, unsigned length, int mode));
KV_FUNCTION(protected, long, _sys_flen, (int handle));
KV_FUNCTION(protected, int, _sys_seek, (int handle, long position));
KV_FUNCTION(protected, int, _sys_istty, (int handle));
KV_FUNCTION(protected, void, _sys_exit, (int status)) __attribute__((noreturn));
KV_FUNCTION(protected, void, _ttywrch, (int ch));

extern "C" int isatty(int fd);
