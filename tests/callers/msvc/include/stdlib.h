/* What a program needs of Microsoft's header of this name, over the Universal C Run-time. */
#pragma once
#define EXIT_SUCCESS 0
#define EXIT_FAILURE 1
__declspec(dllimport) __declspec(noreturn) void exit(int code);
__declspec(dllimport) char* getenv(const char* name);
