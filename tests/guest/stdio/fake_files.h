// A scripted system side for the stream tests: the file entry points are replaced by an
// in-memory file store that records every request, so tests check both what the library did
// and exactly what it asked for.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace fake {

enum Call { kOpen, kClose, kRead, kWrite, kSeek, kFcntl };

struct Request {
  Call call;
  int handle;
  long a; // open: flags; read/write: count; seek: offset; fcntl: command
  long b; // open: mode; seek: whence; fcntl: argument
};

constexpr size_t kFileCapacity = 16384;

struct File {
  const char *name;
  unsigned char data[kFileCapacity];
  long length;
  long position;
  bool open;
  int flags;
};

// Forget all files and requests.
void reset();
// A file with the given contents under `name`, not yet open.
File *make(const char *name, const char *contents);
File *find(const char *name);
// The file behind an open handle.
File *file_of(int handle);

size_t request_count();
const Request &request(size_t i);
// Requests of one kind since the last reset.
size_t count(Call call);
void forget_requests();

// Make the next request of this kind fail with -1 (errno `error`), or answer short.
void fail_next(Call call, int error);
void short_write_next(long written);

// What handles 1 and 2 received.
const char *console_text();

} // namespace fake
