// A host may include the system's headers before the library's; UnloadTest.cpp does it the other way round.
#include <windows.h>

#include <wincrypt.h>

#include "TAVIKVANTRYAPI.h"

#include <type_traits>

static_assert(std::is_same_v<decltype(SetHWND), void(struct HWND__*)>);
static_assert(std::is_same_v<ValidateCertificateCallback, std::function<bool(const struct _CERT_CONTEXT&)>>);
