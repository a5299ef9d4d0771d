/* Character classes: one class byte per character (-1 to 255) in the current locale's table,
 * reached through the exported __rt_ctype_table. The tests are inline. */
#ifndef _CTYPE_H
#define _CTYPE_H

#ifdef __cplusplus
extern "C" {
#endif

#define __CT_SPACE 0x01 /* white space */
#define __CT_PUNCT 0x02
#define __CT_BLANK 0x04 /* the printable space */
#define __CT_LOWER 0x08
#define __CT_UPPER 0x10
#define __CT_DIGIT 0x20
#define __CT_CNTRL 0x40
#define __CT_XALPHA 0x80 /* A-F and a-f */

/* The address of the current table's slot; the table is indexed from -1 (end of file). */
const unsigned char **__rt_ctype_table(void);

/* The "C" table (class byte of character 0). */
extern const unsigned char __ctype[256];

static inline unsigned __ct_class(int c) {
  return c < -1 || c > 255 ? 0u : (unsigned)(*__rt_ctype_table())[c];
}

static inline int isalnum(int c) { return (__ct_class(c) & (__CT_LOWER | __CT_UPPER | __CT_DIGIT)) != 0; }
static inline int isalpha(int c) { return (__ct_class(c) & (__CT_LOWER | __CT_UPPER | __CT_XALPHA)) != 0; }
static inline int iscntrl(int c) { return (__ct_class(c) & __CT_CNTRL) != 0; }
static inline int isdigit(int c) { return __ct_class(c) == __CT_DIGIT; }
static inline int isgraph(int c) {
  return (__ct_class(c) & (__CT_PUNCT | __CT_LOWER | __CT_UPPER | __CT_DIGIT | __CT_XALPHA)) != 0;
}
static inline int islower(int c) { return (__ct_class(c) & __CT_LOWER) != 0; }
static inline int isprint(int c) {
  return (__ct_class(c) & (__CT_PUNCT | __CT_BLANK | __CT_LOWER | __CT_UPPER | __CT_DIGIT)) != 0;
}
static inline int ispunct(int c) { return (__ct_class(c) & __CT_PUNCT) != 0; }
static inline int isspace(int c) { return (__ct_class(c) & __CT_SPACE) != 0; }
static inline int isupper(int c) { return (__ct_class(c) & __CT_UPPER) != 0; }
static inline int isxdigit(int c) {
  unsigned k = __ct_class(c) & (__CT_DIGIT | __CT_XALPHA);
  return k == __CT_DIGIT || k == __CT_XALPHA;
}
static inline int isblank(int c) {
  return (__ct_class(c) & (__CT_SPACE | __CT_CNTRL)) == __CT_SPACE || c == '\t';
}
static inline int tolower(int c) { return (__ct_class(c) & __CT_UPPER) ? c + 32 : c; }
static inline int toupper(int c) { return (__ct_class(c) & __CT_LOWER) && c != 0xdf ? c - 32 : c; }

#ifdef __cplusplus
}
#endif

#endif
