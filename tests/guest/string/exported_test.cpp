// _strtok_r, _mbrtowc and _wcrtomb through libc.so.
#include <kvtest.h>
#include <stdint.h>

extern "C" {
char *_strtok_r(char *text, const char *delimiters, char **save);
int _mbrtowc(uint16_t *out, int byte, void *state);
int _wcrtomb(char *out, int wide, void *state);
}

namespace {
char *const none = nullptr;
}

TEST(Strtok, EmptyTokensAreSkipped) {
  char text[] = ",,a,,b,";
  char *save = nullptr;
  EXPECT_STREQ(_strtok_r(text, ",", &save), "a");
  EXPECT_STREQ(_strtok_r(nullptr, ",", &save), "b");
  EXPECT_EQ(_strtok_r(nullptr, ",", &save), none);
  EXPECT_EQ(_strtok_r(nullptr, ",", &save), none);
  // The delimiters were overwritten in place.
  EXPECT_EQ(text[3], 0);
  EXPECT_EQ(text[6], 0);
}

namespace {
struct TokCase {
  const char *text, *delimiters;
  const char *tokens[4]; // up to three, then null
};
const TokCase tok_cases[] = {
    {"", ",", {nullptr}},
    {",;,;", ",;", {nullptr}},
    {"abc", "", {"abc", nullptr}},
    {"abc", ",", {"abc", nullptr}},
    {"a;b,c", ",;", {"a", "b", "c", nullptr}},
    {"  lead and trail  ", " ", {"lead", "and", "trail", nullptr}},
};
} // namespace

TEST(Strtok, Table) {
  for (const TokCase &c : tok_cases) {
    char text[32];
    size_t i = 0;
    for (; c.text[i]; ++i)
      text[i] = c.text[i];
    text[i] = 0;
    char *save = nullptr;
    char *arg = text;
    for (int k = 0; k < 4; ++k) {
      char *tok = _strtok_r(arg, c.delimiters, &save);
      arg = nullptr;
      if (!c.tokens[k]) {
        EXPECT_EQ(tok, none);
        break;
      }
      ASSERT_NE(tok, none);
      EXPECT_STREQ(tok, c.tokens[k]);
    }
  }
}

// A first call with a null text and a null cell starts from an empty string: no token.
TEST(Strtok, NullTextAndNullCell) {
  char *save = nullptr;
  EXPECT_EQ(_strtok_r(nullptr, ",", &save), none);
}

namespace {
struct MbCase {
  int value, result;
};
// In the "C" locale the ASCII codes have classes and the upper half has none.
const MbCase mb_cases[] = {{'A', 1}, {0, 1}, {0x7f, 1}, {'\n', 1}, {0x80, -1}, {0xff, -1}};
} // namespace

TEST(Multibyte, ByteToWide) {
  for (const MbCase &c : mb_cases) {
    uint16_t wide = 0xbeef;
    EXPECT_EQ(_mbrtowc(&wide, c.value, none), c.result);
    EXPECT_EQ(wide, c.result == 1 ? c.value : 0xbeef);
  }
  // The byte's value, not its sign: a negative char is the upper half.
  EXPECT_EQ(_mbrtowc(nullptr, -1, none), -1);
}

TEST(Multibyte, WideToByte) {
  for (const MbCase &c : mb_cases) {
    char byte = '#';
    EXPECT_EQ(_wcrtomb(&byte, c.value, none), c.result);
    EXPECT_EQ(byte, c.result == 1 ? static_cast<char>(c.value) : '#');
  }
  char byte = '#';
  EXPECT_EQ(_wcrtomb(&byte, 0x141, none), -1); // above 255 even though its low byte is 'A'
  EXPECT_EQ(_wcrtomb(&byte, 0x4100, none), -1);
  EXPECT_EQ(byte, '#');
}
