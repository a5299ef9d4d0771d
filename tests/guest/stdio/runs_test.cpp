// Runs of characters into a stream (printf's sink, fputs, puts). Streams given each run at once
// must agree with one given the same characters one at a time after every run: the result, the
// bytes written, the write requests and every field of the record.
#include <kvtest.h>

#include "fake_files.h"
#include "stdio/runs.h"
#include "stdio/stream.h"

using namespace kv::stdio;

namespace {

FILE *open_with(const char *name, const char *contents, const char *mode, int buffering,
                size_t size) {
  fake::make(name, contents);
  FILE *s = take_free_record();
  if (!s || !freopen(name, mode, s))
    return nullptr;
  if (buffering && setvbuf(s, nullptr, buffering, size) != 0)
    return nullptr;
  return s;
}

long offset(const FILE *s, const unsigned char *p) { return p ? p - s->buffer : -1; }

// Returns the number of differences between the two streams and their files.
int differences(FILE *a, FILE *b) {
  int n = 0;
  n += a->read_count != b->read_count;
  n += a->write_count != b->write_count;
  n += a->flags != b->flags;
  n += a->buffer_position != b->buffer_position;
  n += offset(a, a->cursor) != offset(b, b->cursor);
  n += offset(a, a->high_water) != offset(b, b->high_water);
  const fake::File *fa = fake::file_of(a->handle), *fb = fake::file_of(b->handle);
  n += fa->length != fb->length;
  for (long i = 0; i < fa->length && i < fb->length; ++i)
    n += fa->data[i] != fb->data[i];
  return n;
}

size_t writes_to(int handle) {
  size_t n = 0;
  for (size_t i = 0; i < fake::request_count(); ++i)
    n += fake::request(i).call == fake::kWrite && fake::request(i).handle == handle;
  return n;
}

TEST(StreamRuns, LeaveWhatOneCharacterAtATimeLeaves) {
  struct Setup {
    const char *what, *mode, *contents;
    int buffering;
    size_t size;
    void (*prepare)(FILE *);
    bool failing = false; // every write request fails
  } const setups[] = {
      {"line-buffered 16", "w", "", kLineBuffered, 16, [](FILE *) {}},
      {"line-buffered 64", "w", "", kLineBuffered, 64, [](FILE *) {}},
      {"fully buffered 16", "w", "", kFullyBuffered, 16, [](FILE *) {}},
      {"fully buffered 512", "w", "", 0, 0, [](FILE *) {}},
      {"unbuffered", "w", "", kUnbuffered, 1, [](FILE *) {}},
      {"line-buffered, written before", "w", "", kLineBuffered, 16,
       [](FILE *s) { put_stream('#', s); }},
      // A write over bytes read back: the cursor below the data end.
      {"line-buffered update after a read", "r+", "0123456789ABCDEFGHIJ", kLineBuffered, 32,
       [](FILE *s) {
         for (int i = 0; i < 12; ++i)
           get_char(s);
         _fseek(s, 4, 0);
       }},
      // Read data fill the buffer: every character written over them writes it out.
      {"line-buffered update over a full buffer", "r+", "0123456789ABCDEFGHIJ0123456789ABCDEFGHIJ",
       kLineBuffered, 32,
       [](FILE *s) {
         for (int i = 0; i < 12; ++i)
           get_char(s);
         _fseek(s, 4, 0);
       }},
      {"fully buffered update after a read", "r+", "0123456789ABCDEFGHIJ", kFullyBuffered, 32,
       [](FILE *s) {
         for (int i = 0; i < 12; ++i)
           get_char(s);
         _fseek(s, 4, 0);
       }},
      {"read-only", "r", "abc", 0, 0, [](FILE *) {}},
      {"line-buffered, writes failing", "w", "", kLineBuffered, 16, [](FILE *) {}, true},
      {"fully buffered, writes failing", "w", "", kFullyBuffered, 16, [](FILE *) {}, true},
  };
  const char *const runs[] = {"abc",
                              "defgh\nij",
                              "0123456789abcd",
                              "e",
                              "f",
                              "\n",
                              "\n\n",
                              "a longer run than any of the small buffers, with no line end",
                              "x\ny\nz",
                              "0123456789abcdefghijklmnopqrstuvwxyz0123456789abcdefghijklmnop\n"};
  for (const Setup &setup : setups) {
    fake::reset();
    FILE *whole = open_with("whole", setup.contents, setup.mode, setup.buffering, setup.size);
    FILE *sunk = open_with("sunk", setup.contents, setup.mode, setup.buffering, setup.size);
    FILE *single = open_with("single", setup.contents, setup.mode, setup.buffering, setup.size);
    ASSERT_TRUE(whole != nullptr);
    ASSERT_TRUE(sunk != nullptr);
    ASSERT_TRUE(single != nullptr);
    setup.prepare(whole);
    setup.prepare(sunk);
    setup.prepare(single);
    int wrong = 0;
    for (const char *run : runs) {
      int32_t n = 0;
      while (run[n])
        ++n;
      if (setup.failing)
        fake::fail_next(fake::kWrite, 5);
      int result = put_run(whole, run, static_cast<size_t>(n));
      if (setup.failing)
        fake::fail_next(fake::kWrite, 5);
      put_stream_run(sunk, run, n);
      if (setup.failing)
        fake::fail_next(fake::kWrite, 5);
      int single_result = 0;
      for (int32_t i = 0; i < n; ++i)
        if (put_char(static_cast<unsigned char>(run[i]), single) == -1)
          single_result = -1;
      wrong += result != single_result;
      wrong += differences(whole, single);
      wrong += differences(sunk, single);
      wrong += writes_to(whole->handle) != writes_to(single->handle);
      wrong += writes_to(sunk->handle) != writes_to(single->handle);
    }
    EXPECT_EQ(wrong, 0);
    if (setup.failing)
      EXPECT_TRUE((whole->flags & kError) != 0);
    if (wrong)
      kvtest::fail_detail("setup", setup.what);
    _fclose_internal(whole);
    _fclose_internal(sunk);
    _fclose_internal(single);
  }
}

} // namespace
