// What each character is, written from the class lists of the two tables rather than from the
// class bits, and checks of classification functions against it.
#pragma once

#include <kvtest.h>

namespace expect {

struct Traits {
  bool space, print_space, control, digit, upper, lower, hex, punct;
};

inline bool in(int c, int first, int last) { return c >= first && c <= last; }

inline Traits traits(int c, bool latin1) {
  Traits t{};
  t.space = c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r' ||
            (latin1 && c == 0xa0);
  t.print_space = c == ' ' || (latin1 && c == 0xa0);
  t.control = in(c, 0, 31) || c == 127 || (latin1 && in(c, 0x80, 0x9f));
  t.digit = in(c, '0', '9');
  t.upper = in(c, 'A', 'Z') || (latin1 && (in(c, 0xc0, 0xd6) || in(c, 0xd8, 0xdf)));
  t.lower = in(c, 'a', 'z') || (latin1 && (in(c, 0xe0, 0xf6) || in(c, 0xf8, 0xff)));
  t.hex = in(c, 'A', 'F') || in(c, 'a', 'f');
  // Every visible character that is neither a letter nor a digit.
  bool visible = in(c, 0x21, 0x7e) || (latin1 && in(c, 0xa1, 0xff));
  t.punct = visible && !t.digit && !t.upper && !t.lower;
  return t;
}

// The class byte the table must hold: the bits as the system numbers them.
inline unsigned char class_byte(int c, bool latin1) {
  Traits t = traits(c, latin1);
  return static_cast<unsigned char>(t.space * 0x01 + t.punct * 0x02 + t.print_space * 0x04 +
                                    t.lower * 0x08 + t.upper * 0x10 + t.digit * 0x20 +
                                    t.control * 0x40 + t.hex * 0x80);
}

struct Functions {
  int (*isalnum)(int), (*isalpha)(int), (*iscntrl)(int), (*isdigit)(int), (*isgraph)(int),
      (*islower)(int), (*isprint)(int), (*ispunct)(int), (*isspace)(int), (*isupper)(int),
      (*isxdigit)(int), (*isblank)(int), (*tolower)(int), (*toupper)(int);
};

// Every test and both mappings for -1 to 255 in the table that is current.
inline void check_functions(const Functions &f, bool latin1) {
  for (int c = -1; c < 256; ++c) {
    Traits t = traits(c, latin1);
    bool letter = t.upper || t.lower;
    bool graph = letter || t.digit || t.punct;
    EXPECT_EQ(f.isalnum(c) != 0, letter || t.digit);
    EXPECT_EQ(f.isalpha(c) != 0, letter);
    EXPECT_EQ(f.iscntrl(c) != 0, t.control);
    EXPECT_EQ(f.isdigit(c) != 0, t.digit);
    EXPECT_EQ(f.isgraph(c) != 0, graph);
    EXPECT_EQ(f.islower(c) != 0, t.lower);
    EXPECT_EQ(f.isprint(c) != 0, graph || t.print_space);
    EXPECT_EQ(f.ispunct(c) != 0, t.punct);
    EXPECT_EQ(f.isspace(c) != 0, t.space);
    EXPECT_EQ(f.isupper(c) != 0, t.upper);
    EXPECT_EQ(f.isxdigit(c) != 0, t.digit || t.hex);
    EXPECT_EQ(f.isblank(c) != 0, t.print_space || c == '\t');
    EXPECT_EQ(f.tolower(c), t.upper ? c + 32 : c);
    EXPECT_EQ(f.toupper(c), t.lower && c != 0xdf ? c - 32 : c);
  }
}

struct CaseMapping {
  int c, lower, upper;
};

// The upper half maps only in ISO8859-1; 0xDF counts as upper case there, and 0xFF's upper
// case is therefore 0xDF.
constexpr CaseMapping c_mappings[] = {
    {'A', 'a', 'A'}, {'z', 'z', 'Z'}, {'@', '@', '@'}, {'[', '[', '['}, {'`', '`', '`'},
    {'{', '{', '{'}, {'5', '5', '5'}, {-1, -1, -1},    {0xc0, 0xc0, 0xc0}, {0xe0, 0xe0, 0xe0},
};
constexpr CaseMapping latin1_mappings[] = {
    {'A', 'a', 'A'},        {'z', 'z', 'Z'},        {0xc0, 0xe0, 0xc0}, {0xe0, 0xe0, 0xc0},
    {0xd6, 0xf6, 0xd6},     {0xf6, 0xf6, 0xd6},     {0xd7, 0xd7, 0xd7}, {0xf7, 0xf7, 0xf7},
    {0xd8, 0xf8, 0xd8},     {0xde, 0xfe, 0xde},     {0xdf, 0xff, 0xdf}, {0xff, 0xff, 0xdf},
    {0xa0, 0xa0, 0xa0},     {0xb5, 0xb5, 0xb5},     {-1, -1, -1},
};

template <size_t N> void check_mappings(const Functions &f, const CaseMapping (&cases)[N]) {
  for (const CaseMapping &m : cases) {
    EXPECT_EQ(f.tolower(m.c), m.lower);
    EXPECT_EQ(f.toupper(m.c), m.upper);
  }
}

} // namespace expect
