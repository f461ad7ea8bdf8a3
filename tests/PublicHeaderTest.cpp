// The header has to stand alone, to survive the macros of hosts and of system headers, and to bring none of
// its own. UnloadTest.cpp includes the system's headers after it, HeaderOrderTest.cpp before.
#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#define min(a, b) (((a) < (b)) ? (a) : (b))
#define max(a, b) (((a) > (b)) ? (a) : (b))
#define near
#define far
#define small char
#define interface struct
#define IN
#define OUT
#define OPTIONAL
#define ERROR 0
#define DELETE 0x10000
#define GetMessage GetMessageW
#define U(text) L##text
#include "TAVIKVANTRYAPI.h"
#ifdef _WINDOWS_
#error The header must not include windows.h.
#endif

#include <type_traits>

// The numbers of the binary interface.
static_assert(WM_ASYNC_REQUEST_FINISHED == 0x8100U);
static_assert(std::is_same_v<decltype(WM_ASYNC_REQUEST_FINISHED), const unsigned int>);
static_assert(Asset == 0 && Client == 1);
static_assert(sizeof(VantryType) == 4);
static_assert(std::is_same_v<decltype(ResponseStatus::httpStatusCode), std::int32_t>);
static_assert(std::is_same_v<decltype(TechNote::workTime), std::uint32_t>);
