// Selecting locales by name and by composite name, and the texts they give, through libc.so.
#include <ctype.h>
#include <kvtest.h>
#include <langinfo.h>
#include <locale.h>

namespace {

char *const none = nullptr;
const int categories[] = {LC_COLLATE, LC_CTYPE, LC_MONETARY, LC_NUMERIC, LC_TIME};

size_t length(const char *s) {
  size_t n = 0;
  while (s[n])
    ++n;
  return n;
}

void copy(char (&to)[42], const char *from) {
  for (size_t i = 0; i < 42; ++i)
    to[i] = from[i];
}

void start_initial() {
  static char initial[42];
  static bool saved;
  if (!saved) {
    copy(initial, setlocale(LC_ALL, nullptr));
    saved = true;
  }
  setlocale(LC_ALL, initial);
}

// The names of the five categories, in mask bit order.
struct Names {
  const char *n[5];
};

void expect_names(const Names &want) {
  for (int i = 0; i < 5; ++i) {
    char *got = setlocale(categories[i], nullptr);
    ASSERT_NE(got, none);
    EXPECT_STREQ(got, want.n[i]);
  }
}

const Names all_c = {{"C", "C", "C", "C", "C"}};

} // namespace

TEST(Setlocale, InitialLocaleIsC) {
  start_initial();
  expect_names(all_c);
}

namespace {
struct SetCase {
  int mask;
  const char *name;
  const char *result; // null: refused
  Names after;
};
// Each from the initial locale. Ctype and collate know only ISO8859-1 (also the empty name);
// the others look names up exactly. A refusal keeps what was set before it in the order
// ctype, collate, monetary, numeric, time.
const SetCase set_cases[] = {
    {LC_CTYPE, "C", nullptr, all_c},
    {LC_CTYPE, "ISO8859-1", "ISO8859-1", {{"C", "ISO8859-1", "C", "C", "C"}}},
    {LC_CTYPE, "", "ISO8859-1", {{"C", "ISO8859-1", "C", "C", "C"}}},
    {LC_CTYPE, "FI", nullptr, all_c},
    {LC_COLLATE, "C", nullptr, all_c},
    {LC_COLLATE, "", "ISO8859-1", {{"ISO8859-1", "C", "C", "C", "C"}}},
    {LC_MONETARY, "ISO8859-1", "ISO8859-1", {{"C", "C", "ISO8859-1", "C", "C"}}},
    {LC_MONETARY, "C", "C", all_c},
    {LC_MONETARY, "", nullptr, all_c},
    {LC_MONETARY, "iso8859-1", nullptr, all_c},
    {LC_NUMERIC, "ISO8859-1", "ISO8859-1", {{"C", "C", "C", "ISO8859-1", "C"}}},
    {LC_NUMERIC, "FI", nullptr, all_c},
    {LC_TIME, "FI", "FI", {{"C", "C", "C", "C", "FI"}}},
    {LC_TIME, "ISO8859-1", nullptr, all_c},
    {LC_TIME, "F", nullptr, all_c},
    {LC_ALL, "C", nullptr, all_c},
    {LC_ALL, "ISO8859-1", nullptr, {{"ISO8859-1", "ISO8859-1", "ISO8859-1", "ISO8859-1", "C"}}},
    {LC_ALL, "", nullptr, {{"ISO8859-1", "ISO8859-1", "C", "C", "C"}}},
    {LC_MONETARY | LC_TIME, "FI", nullptr, all_c},
    {LC_NUMERIC | LC_TIME, "FI", nullptr, all_c},
    {LC_COLLATE | LC_NUMERIC, "ISO8859-1", "*",
     {{"ISO8859-1", "C", "C", "ISO8859-1", "C"}}},
    {0, "C", nullptr, all_c},
    {32, "C", nullptr, all_c},
    {33, "ISO8859-1", nullptr, all_c},
    {-1, "ISO8859-1", nullptr, all_c},
};
} // namespace

TEST(Setlocale, ByName) {
  for (const SetCase &c : set_cases) {
    start_initial();
    char *got = setlocale(c.mask, c.name);
    if (!c.result) {
      EXPECT_EQ(got, none);
    } else {
      ASSERT_NE(got, none);
      if (c.result[0] == '*')
        EXPECT_EQ(got[0], '*');
      else
        EXPECT_STREQ(got, c.result);
    }
    expect_names(c.after);
  }
  start_initial();
}

TEST(Setlocale, QueriesOfMasks) {
  start_initial();
  EXPECT_EQ(setlocale(0, nullptr), none);
  EXPECT_EQ(setlocale(32, nullptr), none);
  EXPECT_STREQ(setlocale(LC_COLLATE, nullptr), "C"); // the zero slot
}

namespace {
bool lower_hex(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }

unsigned group(const char *composite, int slot) {
  unsigned v = 0;
  for (int i = 0; i < 8; ++i) {
    char c = composite[1 + 8 * slot + i];
    v = v * 16 + static_cast<unsigned>(c <= '9' ? c - '0' : c - 'a' + 10);
  }
  return v;
}
} // namespace

TEST(Setlocale, CompositeNameForm) {
  start_initial();
  char *answer = setlocale(LC_ALL, nullptr);
  ASSERT_NE(answer, none);
  char q[42];
  copy(q, answer);
  EXPECT_EQ(length(q), 41u);
  EXPECT_EQ(q[0], '*');
  for (int i = 1; i < 41; ++i)
    EXPECT_TRUE(lower_hex(q[i]));
  // Slot order: collate (zero at first), ctype (the table pointer), monetary, numeric, time.
  EXPECT_EQ(group(q, 0), 0u);
  EXPECT_EQ(group(q, 1), reinterpret_cast<unsigned>(*__rt_ctype_table()));
  for (int slot = 2; slot < 5; ++slot)
    EXPECT_NE(group(q, slot), 0u);
  // Any mask with several bits answers the composite name of all five.
  char *two = setlocale(LC_CTYPE | LC_TIME, nullptr);
  ASSERT_NE(two, none);
  EXPECT_STREQ(two, q);
}

TEST(Setlocale, CompositeNameRestoresEverySlot) {
  start_initial();
  char saved[42];
  copy(saved, setlocale(LC_ALL, nullptr));
  setlocale(LC_CTYPE | LC_COLLATE, "");
  setlocale(LC_MONETARY | LC_NUMERIC, "ISO8859-1");
  setlocale(LC_TIME, "FI");
  expect_names({{"ISO8859-1", "ISO8859-1", "ISO8859-1", "ISO8859-1", "FI"}});
  char changed[42];
  copy(changed, setlocale(LC_ALL, nullptr));
  EXPECT_NE(group(changed, 0), group(saved, 0));

  char *back = setlocale(LC_ALL, saved);
  ASSERT_NE(back, none);
  EXPECT_STREQ(back, saved);
  expect_names(all_c);
  EXPECT_EQ(*__rt_ctype_table(), &__ctype[0]);

  // Only the slots of the mask take their values; the answer is then that one slot's name.
  EXPECT_STREQ(setlocale(LC_TIME, changed), "FI");
  char *pair = setlocale(LC_COLLATE | LC_NUMERIC, changed);
  ASSERT_NE(pair, none);
  EXPECT_EQ(pair[0], '*');
  expect_names({{"ISO8859-1", "C", "C", "ISO8859-1", "FI"}});
  start_initial();
}

TEST(Setlocale, MalformedCompositeNamesAreRefused) {
  start_initial();
  char saved[42];
  copy(saved, setlocale(LC_ALL, nullptr));
  char upper[42];
  copy(upper, saved);
  for (int i = 1; i < 41; ++i)
    if (upper[i] >= 'a')
      upper[i] = static_cast<char>(upper[i] - 32);
  char longer[43];
  for (int i = 0; i < 41; ++i)
    longer[i] = saved[i];
  longer[41] = '0';
  longer[42] = 0;
  const char *bad[] = {"*", "*0000", "*zzzzzzzz", longer};
  for (const char *name : bad) {
    EXPECT_EQ(setlocale(LC_ALL, name), none);
    EXPECT_STREQ(setlocale(LC_ALL, nullptr), saved);
  }
  bool has_letter = false;
  for (int i = 1; i < 41; ++i)
    has_letter |= saved[i] >= 'a';
  if (has_letter) {
    EXPECT_EQ(setlocale(LC_ALL, upper), none);
    EXPECT_STREQ(setlocale(LC_ALL, nullptr), saved);
  }
}
