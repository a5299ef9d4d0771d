// The library's own sprintf family over the formatting engine. Not exported.
#pragma once

#include <stdarg.h>
#include <stddef.h>

extern "C" {
int sprintf(char *buffer, const char *format, ...) __attribute__((format(printf, 2, 3)));
int snprintf(char *buffer, size_t size, const char *format, ...) __attribute__((format(printf, 3, 4)));
int vsnprintf(char *buffer, size_t size, const char *format, va_list args);
}
