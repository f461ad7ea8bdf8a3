/* What a program needs of Microsoft's header of this name, over the Universal C Run-time. */
#pragma once
#include <stdarg.h>
#include <stddef.h>

typedef struct file FILE;
__declspec(dllimport) FILE* __acrt_iob_func(unsigned index);
__declspec(dllimport) int __stdio_common_vfprintf(unsigned long long options, FILE* file, const char* format,
                                                  void* locale, va_list arguments);
__declspec(dllimport) int fputs(const char* text, FILE* file);
#define stdout __acrt_iob_func(1)
#define stderr __acrt_iob_func(2)

static __inline int printf(const char* format, ...)
{
    va_list arguments;
    int written;
    va_start(arguments, format);
    written = __stdio_common_vfprintf(0, stdout, format, NULL, arguments);
    va_end(arguments);
    return written;
}
