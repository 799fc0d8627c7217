/* Stands in for the platform's header of the same name. The native system has a function utime of its own, which would
   look for the path on the machine's disk. */
#pragma once

#include <time.h>

struct utimbuf
{
    time_t actime;
    time_t modtime;
};

#define utime _utime

#ifdef __cplusplus
extern "C"
#endif
    int
    _utime(const char* pszPath, struct utimbuf* pTimes);
