// errno and h_errno reach the library's code only through these accessors, which are called
// through the GOT so that an environment's own definitions take over for the whole library.
#pragma once

extern "C" {
int *___aeabi_errno_addr(void);
int *___h_errno_addr(void);
int __read_errno(void);
void __set_errno(int value);
}
