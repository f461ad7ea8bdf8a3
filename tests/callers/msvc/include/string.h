/* What a program needs of Microsoft's header of this name, over the Universal C Run-time. */
#pragma once
#include <stddef.h>
int strcmp(const char* left, const char* right);
