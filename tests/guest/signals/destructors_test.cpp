// White-box: destructor records by owner, newest first, and records made while the list runs.
#include <kvtest.h>

#include "runtime/exits.h"

namespace {
char order[16];
int ran;
int owner_x, owner_y;

void note(void *argument) { order[ran++] = static_cast<char>(reinterpret_cast<intptr_t>(argument)); }
void note_and_register(void *argument) {
  note(argument);
  kv::register_destructor(reinterpret_cast<void *>('n'), note, &owner_x);
}
void reset() {
  ran = 0;
  for (char &c : order)
    c = 0;
}
void *tag(char c) { return reinterpret_cast<void *>(static_cast<intptr_t>(c)); }
} // namespace

TEST(Destructors, ByOwnerNewestFirst) {
  reset();
  EXPECT_EQ(kv::register_destructor(tag('a'), note, &owner_x), 0);
  EXPECT_EQ(kv::register_destructor_function_first(note, tag('b'), &owner_y), 0);
  EXPECT_EQ(kv::register_destructor(tag('c'), note, &owner_x), 0);
  EXPECT_EQ(kv::register_destructor(tag('d'), note, nullptr), 0);
  kv::run_destructors(&owner_x);
  EXPECT_STREQ(order, "ca");
  kv::run_destructors(&owner_y);
  EXPECT_STREQ(order, "cab");
  kv::run_destructors(&owner_y); // none left of that owner
  EXPECT_STREQ(order, "cab");
  kv::run_destructors(nullptr);
  EXPECT_STREQ(order, "cabd");
}

TEST(Destructors, ARecordMadeWhileRunningRunsNext) {
  reset();
  kv::register_destructor(tag('1'), note, &owner_x);
  kv::register_destructor(tag('2'), note_and_register, &owner_x);
  kv::register_destructor(tag('3'), note, &owner_y);
  kv::run_destructors(&owner_x);
  // '3' is skipped (other owner) and stays; '2' registers 'n', which runs before '1'.
  EXPECT_STREQ(order, "2n1");
  kv::run_destructors(nullptr);
  EXPECT_STREQ(order, "2n13");
}

// atexit makes a record of no owner whose function is called with the argument 0.
TEST(Destructors, AtexitRecordsHaveArgumentZero) {
  reset();
  order[0] = '?';
  EXPECT_EQ(atexit(reinterpret_cast<void (*)(void)>(note)), 0);
  kv::run_destructors(&owner_x); // not this owner's
  EXPECT_EQ(ran, 0);
  kv::run_destructors(nullptr);
  EXPECT_EQ(ran, 1);
  EXPECT_EQ(order[0], 0);
}
