#ifndef _STRING_H
#define _STRING_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* From the front-door archive (libkvc_front.a), linked beside libc.so. */
void *memcpy(void *to, const void *from, size_t n);
void *memmove(void *to, const void *from, size_t n);
void *memset(void *to, int ch, size_t n);
int memcmp(const void *a, const void *b, size_t n);
void *memchr(const void *s, int ch, size_t n);
size_t strlen(const char *s);
int strcmp(const char *a, const char *b);
int strncmp(const char *a, const char *b, size_t n);
char *strchr(const char *s, int ch);
char *strrchr(const char *s, int ch);
char *strcpy(char *to, const char *from);
char *strncpy(char *to, const char *from, size_t n);
char *strcat(char *to, const char *from);

#ifdef __cplusplus
}
#endif

#endif
