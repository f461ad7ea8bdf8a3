#include "ModuleTexts.h"

#include "Module.h"
#include "VantryApi.h"
#include "WindowsCalls.h"

#include <array>

std::wstring VantryIntegrationApi::Utils::LoadStringW(std::uint32_t id)
{
    const LumoLogBlock block(CVantryApi::m_logger, "VantryIntegrationApi::Utils::LoadStringW");
    std::array<wchar_t, 512> text{};
    // ERROR_RESOURCE_NAME_NOT_FOUND and other errors leave the buffer as it is: an empty text.
    ::LoadStringW(Platform::moduleHandle(), id, text.data(), static_cast<int>(text.size()));
    return text.data();
}
