/* Time: the calendar types and clocks of this system. time_t is a signed 32-bit count of
 * seconds since 1970-01-01 UTC. */
#ifndef _TIME_H
#define _TIME_H

#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

time_t time(time_t *t);

#ifdef __cplusplus
}
#endif

#endif
