#include "Failure.h"
#include "Log.h"
#include "MainWindow.h"
#include "Settings.h"

#include <commctrl.h>

#include <cstdlib>
#include <exception>

namespace
{
void runProgram(int showCommand)
{
    const Settings settings = readSettings();
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_STANDARD_CLASSES | ICC_LISTVIEW_CLASSES |
                                                             ICC_BAR_CLASSES | ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&controls);
    const auto lines = std::make_shared<LogQueue>();
    const Log log(lines);
    MainWindow(settings, lines, showCommand).run();
}
} // namespace

int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPSTR /*commandLine*/, int showCommand)
{
    try {
        runProgram(showCommand);
        return EXIT_SUCCESS;
    } catch (const WrongArguments& error) {
        tellFailure(nullptr, error.explanation);
    } catch (const std::exception& error) {
        tellFailure(nullptr, L"The program cannot go on: " + describe(error));
    }
    return EXIT_FAILURE;
}
