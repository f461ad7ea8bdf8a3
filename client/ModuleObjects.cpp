#include "ModuleObjects.h"

// The order of construction holds within one file only, which is why the class's own logger stands here, too.
namespace VantryIntegrationApi
{
log4cxx::LoggerPtr g_moduleLogger = Lumo::loggerOf(L"TAVIKVANTRYAPI");
CVantryApi g_client;
log4cxx::LoggerPtr CVantryApi::m_logger = Lumo::loggerOf(L"CVantryApi");
const std::wstring g_requestErrorText =
    L"We've got an error during request. See logged status code and message for more details.";
} // namespace VantryIntegrationApi
