#pragma once

#include <windows.h>

#include "TAVIKVANTRYAPI.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

/// One operation of the library and what follows on its end. Every function runs on the window's thread.
struct Operation
{
    std::wstring progress;             ///< what the person reads meanwhile
    std::wstring failure;              ///< what a failure means for the person
    std::int32_t successCode = 0;      ///< of the operation's kind
    std::function<void()> start;       ///< calls the export
    std::function<void()> succeeded;   ///< takes the results over
    std::function<void()> failed = {}; ///< may be empty
    std::function<void()> next = {};   ///< goes on after a success, with another operation say; may be empty
};

/// What the window shows of the operations.
class OperationsView
{
public:
    virtual ~OperationsView() = default;
    virtual void showBusy(const std::wstring& progress) = 0;
    virtual void showIdle() = 0;
    virtual void showFailure(const std::wstring& failure, const ResponseStatus& response) = 0;
};

/// Runs the library's operations, one at a time, on a window whose procedure calls `finished` on
/// `WM_ASYNC_REQUEST_FINISHED`. The library neither refuses a second operation nor guards its results:
/// whoever starts one while another runs, or reads results meanwhile, races with the library's thread.
class Operations
{
public:
    explicit Operations(OperationsView& view) : m_view(view) {}

    bool isRunning() const { return m_running.has_value(); }

    /// Starts an operation; none may be running.
    void run(Operation operation);

    /// The library's message has come.
    void finished();

    /// From now on an operation that ends is the last of its chain, and a failure is not told.
    void wrapUp() { m_isWrappingUp = true; }

private:
    void end(const ResponseStatus& response);

    OperationsView& m_view;
    std::optional<Operation> m_running;
    bool m_isWrappingUp = false;
};
