/* Locales: categories are bits of a mask. The library keeps five built-in locales' worth of
 * blocks; setlocale and localeconv are thin inline wrappers around the exported _setlocale_r
 * and _get_lconv. */
#ifndef _LOCALE_H
#define _LOCALE_H

#ifdef __cplusplus
extern "C" {
#endif

#define LC_COLLATE 1
#define LC_CTYPE 2
#define LC_MONETARY 4
#define LC_NUMERIC 8
#define LC_TIME 16
#define LC_ALL 31

#ifndef NULL
#ifdef __cplusplus
#define NULL nullptr
#else
#define NULL ((void *)0)
#endif
#endif

struct lconv {
  char *decimal_point;
  char *thousands_sep;
  char *grouping;
  char *int_curr_symbol;
  char *currency_symbol;
  char *mon_decimal_point;
  char *mon_thousands_sep;
  char *mon_grouping;
  char *positive_sign;
  char *negative_sign;
  char int_frac_digits;
  char frac_digits;
  char p_cs_precedes;
  char p_sep_by_space;
  char n_cs_precedes;
  char n_sep_by_space;
  char p_sign_posn;
  char n_sign_posn;
};

/* A query with several categories answers "*" and five 8-digit hexadecimal slot values (41
 * characters); the buffer must hold 42 bytes. */
char *_setlocale_r(char *buffer, int mask, const char *name);
void _get_lconv(struct lconv *lconv);

#ifndef __KV_LIBC_SOURCE
static inline char *setlocale(int mask, const char *name) {
  static char buffer[42];
  return _setlocale_r(buffer, mask, name);
}

static inline struct lconv *localeconv(void) {
  static struct lconv conv;
  _get_lconv(&conv);
  return &conv;
}
#endif

#ifdef __cplusplus
}
#endif

#endif
