// Writing to host descriptors: the console, the log sink, the trace.
#pragma once

#include <cstddef>
#include <string_view>

namespace kvrun {

// Writes all of it unless the descriptor fails; returns the bytes written. fd < 0 writes nothing.
size_t write_all(int fd, const void *data, size_t size);
inline size_t write_all(int fd, std::string_view text) { return write_all(fd, text.data(), text.size()); }

} // namespace kvrun
