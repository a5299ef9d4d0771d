#ifndef _STDLIB_H
#define _STDLIB_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

#define EXIT_SUCCESS 0
#define EXIT_FAILURE 1

/* Exported by libc.so. */
void abort(void) __attribute__((noreturn));
void _exit(int status) __attribute__((noreturn));
int atexit(void (*function)(void));
long random(void);
void srandom(unsigned seed);
extern char **environ;

#define RAND_MAX 0x7fffffff

/* From the front-door archive (libkvc_front.a), linked beside libc.so. */
void *malloc(size_t size);
void free(void *block);
void *realloc(void *block, size_t size);
void *calloc(size_t count, size_t size);
int rand(void);
void srand(unsigned seed);
void exit(int status) __attribute__((noreturn));
char *getenv(const char *name);
int abs(int value);
long labs(long value);
int atoi(const char *text);
long atol(const char *text);

#ifdef __cplusplus
}
#endif

#endif
