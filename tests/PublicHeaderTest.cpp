// The header has to stand alone, to survive the macros of hosts and of system headers, and to bring none of
// its own.
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
#undef U
#undef GetMessage
#undef DELETE
#undef ERROR
#undef OPTIONAL
#undef OUT
#undef IN
#undef interface
#undef small
#undef far
#undef near
#undef max
#undef min
#ifdef _WINDOWS_
#error The header must not include windows.h.
#endif

// A host may include these later. Whether it may include them earlier, HeaderOrderTest.cpp tells.
#if __has_include(<wincrypt.h>)
#include <windows.h>

#include <wincrypt.h>
#endif

#include <type_traits>

// The numbers of the binary interface.
static_assert(WM_ASYNC_REQUEST_FINISHED == 0x8100U);
static_assert(std::is_same_v<decltype(WM_ASYNC_REQUEST_FINISHED), const UINT>);
static_assert(Asset == 0 && Client == 1);
static_assert(sizeof(VantryType) == 4);
static_assert(std::is_same_v<decltype(ResponseStatus::httpStatusCode), std::int32_t>);
static_assert(std::is_same_v<decltype(TechNote::workTime), std::uint32_t>);

// A callback reads the whole certificate.
static_assert(std::is_constructible_v<ValidateCertificateCallback, bool (*)(const CERT_CONTEXT&)>);
static_assert(sizeof(CERT_CONTEXT::cbCertEncoded) == 4);
