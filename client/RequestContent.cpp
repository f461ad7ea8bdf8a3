#include "RequestContent.h"

#include "RestText.h"

#include <stdexcept>

namespace VantryIntegrationApi::Utils
{
web::json::value entity(const utility::char_t* type, const std::wstring& id)
{
    auto value = web::json::value::object();
    value[U("type")] = web::json::value::string(type);
    value[U("id")] = web::json::value::string(Platform::toRestText(id));
    return value;
}

void requireOneLine(const std::wstring& text, const std::string& name)
{
    if (text.find_first_of(std::wstring(L"\r\n\0", 3)) != std::wstring::npos) {
        throw std::invalid_argument("The " + name + " holds a line break or a zero character.");
    }
}
} // namespace VantryIntegrationApi::Utils
