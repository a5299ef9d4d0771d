// The classification and case-mapping functions the library keeps for its own use.
#pragma once

extern "C" {
int isalnum(int c);
int isalpha(int c);
int iscntrl(int c);
int isdigit(int c);
int isgraph(int c);
int islower(int c);
int isprint(int c);
int ispunct(int c);
int isspace(int c);
int isupper(int c);
int isxdigit(int c);
int isblank(int c);
int tolower(int c);
int toupper(int c);
}
