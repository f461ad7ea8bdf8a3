#include "Failure.h"
#include "MainWindow.h"
#include "Settings.h"

#include <commctrl.h>

#include <cstdlib>
#include <exception>

int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPSTR /*commandLine*/, int showCommand)
{
    try {
        const Settings settings = readSettings();
        const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_STANDARD_CLASSES | ICC_LISTVIEW_CLASSES |
                                                                 ICC_BAR_CLASSES | ICC_PROGRESS_CLASS};
        InitCommonControlsEx(&controls);
        MainWindow(settings).run(showCommand);
        return EXIT_SUCCESS;
    } catch (const WrongArguments& error) {
        tellFailure(nullptr, describe(error));
    } catch (const std::exception& error) {
        tellFailure(nullptr, L"The program cannot go on: " + describe(error));
    }
    return EXIT_FAILURE;
}
