/// @file
/// Where the REST SDK's tasks run.
#pragma once

namespace Platform
{
/// From now on each task holds a reference to the module until its pool thread has left the module's code.
/// To be called once, before the first task.
void runTasksWithModuleHeld();
} // namespace Platform
