// localeconv and nl_langinfo in every built-in locale, through libc.so.
#include <kvtest.h>
#include <langinfo.h>
#include <locale.h>

namespace {

char *const none = nullptr;

void start_initial() {
  static char initial[42];
  static bool saved;
  if (!saved) {
    const char *q = setlocale(LC_ALL, nullptr);
    for (int i = 0; i < 42; ++i)
      initial[i] = q[i];
    saved = true;
  }
  setlocale(LC_ALL, initial);
}

struct Conventions {
  const char *strings[10]; // in struct lconv order
  char fields[8];
};

const Conventions c_conventions = {
    {".", "", "", "", "", "", "", "", "", ""}, {'\xff', '\xff', '\xff', '\xff', '\xff', '\xff', '\xff', '\xff'}};
const Conventions latin1_conventions = {
    {".", ",", "\3", "STG ", "\xa3", ".", ",", "\3", "", "-"}, {2, 2, 1, 0, 1, 0, 1, 2}};

void expect_conventions(const lconv *l, const Conventions &num, const Conventions &mon) {
  const char *strings[10] = {l->decimal_point,     l->thousands_sep,   l->grouping,
                             l->int_curr_symbol,   l->currency_symbol, l->mon_decimal_point,
                             l->mon_thousands_sep, l->mon_grouping,    l->positive_sign,
                             l->negative_sign};
  for (int i = 0; i < 3; ++i)
    EXPECT_STREQ(strings[i], num.strings[i]);
  for (int i = 3; i < 10; ++i)
    EXPECT_STREQ(strings[i], mon.strings[i]);
  const char fields[8] = {l->int_frac_digits, l->frac_digits,    l->p_cs_precedes,
                          l->p_sep_by_space,  l->n_cs_precedes,  l->n_sep_by_space,
                          l->p_sign_posn,     l->n_sign_posn};
  for (int i = 0; i < 8; ++i)
    EXPECT_EQ(fields[i], mon.fields[i]);
}

} // namespace

// Numeric and monetary come from their own slots, so every pairing shows through.
TEST(Conventions, EachPairing) {
  struct Pairing {
    const char *numeric, *monetary;
    const Conventions &num, &mon;
  };
  const Pairing pairings[] = {
      {"C", "C", c_conventions, c_conventions},
      {"ISO8859-1", "ISO8859-1", latin1_conventions, latin1_conventions},
      {"ISO8859-1", "C", latin1_conventions, c_conventions},
      {"C", "ISO8859-1", c_conventions, latin1_conventions},
  };
  for (const Pairing &p : pairings) {
    start_initial();
    ASSERT_NE(setlocale(LC_NUMERIC, p.numeric), none);
    ASSERT_NE(setlocale(LC_MONETARY, p.monetary), none);
    expect_conventions(localeconv(), p.num, p.mon);
    lconv direct;
    _get_lconv(&direct);
    expect_conventions(&direct, p.num, p.mon);
  }
  start_initial();
}

namespace {

struct Item {
  int item;
  const char *c, *fi; // in the "C" and the Finnish time locale
};

const Item time_items[] = {
    {D_T_FMT, "%a %b %e %H:%M:%S %Y", "%a %e. %Bta %Y %H:%M:%S"},
    {D_FMT, "%m/%d/%y", "%d.%m.%Y"},
    {T_FMT, "%H:%M:%S", "%H:%M:%S"},
    {T_FMT_AMPM, "%I:%M:%S %p", "%I:%M:%S %p"},
    {AM_STR, "AM", "AM"},
    {PM_STR, "PM", "PM"},
    {DAY_1, "Sunday", "Sunnuntai"},
    {DAY_2, "Monday", "Maanantai"},
    {DAY_3, "Tuesday", "Tiistai"},
    {DAY_4, "Wednesday", "Keskiviikko"},
    {DAY_5, "Thursday", "Torstai"},
    {DAY_6, "Friday", "Perjantai"},
    {DAY_7, "Saturday", "Lauantai"},
    {ABDAY_1, "Sun", "Su"},
    {ABDAY_2, "Mon", "Ma"},
    {ABDAY_3, "Tue", "Ti"},
    {ABDAY_4, "Wed", "Ke"},
    {ABDAY_5, "Thu", "To"},
    {ABDAY_6, "Fri", "Pe"},
    {ABDAY_7, "Sat", "La"},
    {MON_1, "January", "Tammikuu"},
    {MON_2, "February", "Helmikuu"},
    {MON_3, "March", "Maaliskuu"},
    {MON_4, "April", "Huhtikuu"},
    {MON_5, "May", "Toukokuu"},
    {MON_6, "June", "Kes\xe4kuu"},
    {MON_7, "July", "Hein\xe4kuu"},
    {MON_8, "August", "Elokuu"},
    {MON_9, "September", "Syyskuu"},
    {MON_10, "October", "Lokakuu"},
    {MON_11, "November", "Marraskuu"},
    {MON_12, "December", "Joulukuu"},
    {ABMON_1, "Jan", "Tammi"},
    {ABMON_2, "Feb", "Helmi"},
    {ABMON_3, "Mar", "Maalis"},
    {ABMON_4, "Apr", "Huhti"},
    {ABMON_5, "May", "Touko"},
    {ABMON_6, "Jun", "Kes\xe4"},
    {ABMON_7, "Jul", "Hein\xe4"},
    {ABMON_8, "Aug", "Elo"},
    {ABMON_9, "Sep", "Syys"},
    {ABMON_10, "Oct", "Loka"},
    {ABMON_11, "Nov", "Marras"},
    {ABMON_12, "Dec", "Joulu"},
};

// Items with no text in any locale, including those past the last one.
const int empty_items[] = {ERA, ERA_D_FMT, ALT_DIGITS, ERA_D_T_FMT, ERA_T_FMT, YESEXPR,
                           NOEXPR, 55, 60, 1000};

} // namespace

TEST(Langinfo, TimeItemsInBothTimeLocales) {
  start_initial();
  for (const Item &i : time_items)
    EXPECT_STREQ(nl_langinfo(i.item), i.c);
  ASSERT_NE(setlocale(LC_TIME, "FI"), none);
  for (const Item &i : time_items)
    EXPECT_STREQ(nl_langinfo(i.item), i.fi);
  start_initial();
  EXPECT_STREQ(nl_langinfo(9), "Tuesday");
}

TEST(Langinfo, EmptyItems) {
  for (int pass = 0; pass < 2; ++pass) {
    start_initial();
    if (pass)
      setlocale(LC_ALL & ~LC_TIME, "ISO8859-1");
    for (int item : empty_items)
      EXPECT_STREQ(nl_langinfo(item), "");
  }
  start_initial();
}

TEST(Langinfo, CodesetIsTheCtypeName) {
  start_initial();
  EXPECT_STREQ(nl_langinfo(CODESET), "C");
  setlocale(LC_CTYPE, "");
  EXPECT_STREQ(nl_langinfo(CODESET), "ISO8859-1");
  start_initial();
}

// The numeric items follow the numeric slot; the currency string marks where the symbol goes.
TEST(Langinfo, NumericAndCurrencyItems) {
  struct Case {
    const char *numeric, *monetary, *radix, *thousands, *currency;
  };
  const Case cases[] = {
      {"C", "C", ".", "", ""},
      {"ISO8859-1", "C", ".", ",", ""},
      {"C", "ISO8859-1", ".", "", "-\xa3"},
  };
  for (const Case &c : cases) {
    start_initial();
    setlocale(LC_NUMERIC, c.numeric);
    setlocale(LC_MONETARY, c.monetary);
    EXPECT_STREQ(nl_langinfo(RADIXCHAR), c.radix);
    EXPECT_STREQ(nl_langinfo(THOUSEP), c.thousands);
    EXPECT_STREQ(nl_langinfo(CRNCYSTR), c.currency);
  }
  start_initial();
}

// Asking for texts changes no category.
TEST(Langinfo, LeavesTheLocaleAlone) {
  start_initial();
  setlocale(LC_TIME, "FI");
  setlocale(LC_NUMERIC, "ISO8859-1");
  char before[42];
  const char *q = setlocale(LC_ALL, nullptr);
  for (int i = 0; i < 42; ++i)
    before[i] = q[i];
  for (int item = 0; item < 56; ++item)
    nl_langinfo(item);
  EXPECT_STREQ(setlocale(LC_ALL, nullptr), before);
  start_initial();
}
