// Compile-time assembly of a locale block: a size word, the zero-padded name, the (negative)
// offset from the data start back to the name, then the category's data. Every block is built
// twice by the same routine: once to measure it, once to fill an array of that size.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace kv::locale {

// Not constexpr: reaching it stops the compile-time build of a block.
void layout_error();

class BlockWriter {
public:
  constexpr explicit BlockWriter(unsigned char *out) : out_(out) {}

  constexpr size_t position() const { return pos_; }
  // Offset of the next byte from the data start, as string fields record it.
  constexpr uint32_t data_offset() const { return static_cast<uint32_t>(pos_ - data_); }

  constexpr void byte(unsigned v) {
    if (out_)
      out_[pos_] = static_cast<unsigned char>(v);
    ++pos_;
  }
  constexpr void word(uint32_t v) {
    for (int i = 0; i < 4; ++i)
      byte((v >> (8 * i)) & 0xff);
  }
  constexpr void patch_word(size_t at, uint32_t v) {
    if (out_)
      for (int i = 0; i < 4; ++i)
        out_[at + i] = static_cast<unsigned char>(v >> (8 * i));
  }
  // The text with its terminator, then zeros up to `slot` bytes when a slot size is given.
  constexpr void text(const char *s, size_t slot = 0) {
    size_t n = 0;
    for (; s[n]; ++n)
      byte(static_cast<unsigned char>(s[n]));
    if (slot && n >= slot)
      layout_error(); // the name does not fit its slot
    for (byte(0), ++n; n < slot; ++n)
      byte(0);
  }
  constexpr void align() {
    while (pos_ % 4)
      byte(0);
  }

  constexpr void begin(const char *name) {
    word(0);
    text(name);
    align();
    word(static_cast<uint32_t>(4 - static_cast<int32_t>(pos_ + 4)));
    data_ = pos_;
  }
  constexpr void end() {
    align();
    patch_word(0, static_cast<uint32_t>(pos_));
  }

private:
  unsigned char *out_;
  size_t pos_ = 0;
  size_t data_ = 0;
};

template <size_t N> struct Block {
  alignas(4) unsigned char bytes[N];
};

template <typename Content> constexpr size_t block_size(const Content &content) {
  BlockWriter w(nullptr);
  write_block(w, content);
  return w.position();
}

template <size_t N, typename Content> constexpr Block<N> build_block(const Content &content) {
  Block<N> b{};
  BlockWriter w(b.bytes);
  write_block(w, content);
  return b;
}

// Bytes before the data start of a block named `name`.
constexpr size_t header_size(const char *name) {
  size_t n = 0;
  while (name[n])
    ++n;
  return 4 + ((n + 4) & ~size_t{3}) + 4;
}

} // namespace kv::locale
