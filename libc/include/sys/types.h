#ifndef _SYS_TYPES_H
#define _SYS_TYPES_H

#include <stddef.h>
#include <stdint.h>

typedef int32_t time_t;
typedef int32_t ssize_t;
typedef int32_t off_t;
typedef int32_t pid_t;
typedef uint32_t mode_t;

#endif
