// The standard string functions the library uses itself. They are not exported; the aligned
// paths go a word at a time.
#pragma once

#include <stddef.h>

extern "C" {
size_t strlen(const char *s);
int strcmp(const char *a, const char *b);
int strncmp(const char *a, const char *b, size_t n);
char *strchr(const char *s, int c);
char *strrchr(const char *s, int c);
char *strcat(char *dst, const char *src);
char *strncpy(char *dst, const char *src, size_t n);
int memcmp(const void *a, const void *b, size_t n);
}
