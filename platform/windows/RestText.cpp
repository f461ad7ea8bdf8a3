#include "RestText.h"

#include "WideText.h"

utility::string_t Platform::toRestText(const std::wstring& text)
{
    requireWellFormed(text);
    return text;
}

std::wstring Platform::fromRestText(const utility::string_t& text)
{
    requireWellFormed(text);
    return text;
}
