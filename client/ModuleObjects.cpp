#include "ModuleObjects.h"

#include "Module.h"

using Platform::ModuleObject;

namespace
{
// The order of construction holds within one file only, which is why the class's own logger is made here,
// too.
ModuleObject<log4cxx::LoggerPtr> moduleLogger(Lumo::loggerOf(L"TAVIKVANTRYAPI"));
ModuleObject<VantryIntegrationApi::CVantryApi> client;
ModuleObject<log4cxx::LoggerPtr> classLogger(Lumo::loggerOf(L"CVantryApi"));
ModuleObject<const std::wstring> requestErrorText(
    L"We've got an error during request. See logged status code and message for more details.");
} // namespace

namespace VantryIntegrationApi
{
log4cxx::LoggerPtr& g_moduleLogger = moduleLogger.object;
CVantryApi& g_client = client.object;
log4cxx::LoggerPtr& CVantryApi::m_logger = classLogger.object;
const std::wstring& g_requestErrorText = requestErrorText.object;
} // namespace VantryIntegrationApi
