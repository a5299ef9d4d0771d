/* The stream record as the library lays it out. Programs see it for the inline character
 * paths of <stdio.h>; its fields are the library's to manage. */
#ifndef _KV_STREAM_H
#define _KV_STREAM_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

struct __kv_stream {
  int32_t read_count; /* < 0: ~n bytes wait at the cursor but go through the slow path first */
  unsigned char *cursor;
  int32_t write_count; /* < 0 after a read: minus the room after the cursor */
  uint32_t flags;
  unsigned char *buffer;
  int32_t handle;
  int32_t buffer_position; /* file offset of buffer[0] */
  uint32_t buffer_size;
  uint32_t core_word;
  unsigned char small_buffer[2]; /* [0]: unbuffered storage, [1]: the pushed-back character */
  int32_t seek_target;
  unsigned char *high_water;
  unsigned char *pushback_cursor;
  uint32_t core_words[4];
  uint8_t pending_count;
  uint8_t pending_length;
  uint32_t lock; /* everything before this is cleared on close */
  uint32_t link; /* next record, bit 0 set while open */
};

#ifdef __cplusplus
}
#endif

#endif
