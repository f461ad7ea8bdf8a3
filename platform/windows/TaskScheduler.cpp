#include "TaskScheduler.h"

#include "ModuleReferences.h"

#include <pplx/pplxtasks.h>

#ifndef CPPREST_FORCE_PPLX

// The tasks are those of Microsoft's runtime, whose scheduler holds the module of each task itself.
void Platform::runTasksWithModuleHeld() {}

#else

#include <memory>
#include <system_error>

namespace
{
struct ScheduledTask
{
    pplx::TaskProc_t procedure;
    void* argument;
    HINSTANCE module;
};

void CALLBACK runTask(PTP_CALLBACK_INSTANCE instance, PVOID context)
{
    const std::unique_ptr<ScheduledTask> task(static_cast<ScheduledTask*>(context));
    FreeLibraryWhenCallbackReturns(instance, task->module);
    task->procedure(task->argument);
}

class ModuleHoldingScheduler : public pplx::scheduler_interface
{
public:
    void schedule(pplx::TaskProc_t procedure, void* argument) override
    {
        auto task =
            std::make_unique<ScheduledTask>(ScheduledTask{procedure, argument, Platform::holdModule()});
        // ERROR_NOT_ENOUGH_MEMORY
        if (TrySubmitThreadpoolCallback(&runTask, task.get(), nullptr) == FALSE) {
            const auto error = static_cast<int>(GetLastError());
            FreeLibrary(task->module); // not the last reference: this code is still running
            throw std::system_error(error, std::system_category(), "TrySubmitThreadpoolCallback");
        }
        static_cast<void>(task.release()); // runTask owns it now
    }
};
} // namespace

void Platform::runTasksWithModuleHeld()
{
    pplx::set_ambient_scheduler(std::make_shared<ModuleHoldingScheduler>());
}

#endif
