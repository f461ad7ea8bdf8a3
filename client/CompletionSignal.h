/// @file
/// Tells the host's window that an asynchronous operation has ended.
#pragma once

#include "VantryApi.h"
#include "WindowsCalls.h"

namespace VantryIntegrationApi
{
/// Every operation constructs one as its first act; the message goes out when the operation is left by any
/// path, after all of its results have been written. A null window is told nothing.
class SignalAsyncRequestFinishedWrapper
{
public:
    explicit SignalAsyncRequestFinishedWrapper(HWND window) : m_window(window) {}

    ~SignalAsyncRequestFinishedWrapper()
    {
        const LumoFunction log(
            CVantryApi::m_logger,
            "VantryIntegrationApi::SignalAsyncRequestFinishedWrapper::~SignalAsyncRequestFinishedWrapper");
        if (m_window == nullptr) {
            return;
        }
        LUMO_INFO(log, L"Sending signal async request finished.");
        // ERROR_INVALID_WINDOW_HANDLE (the window is gone), ERROR_NOT_ENOUGH_QUOTA (its queue is full),
        // ERROR_ACCESS_DENIED (a window of a process with higher rights): there is nobody left to tell.
        PostMessageW(m_window, WM_ASYNC_REQUEST_FINISHED, 0, 0);
    }

    SignalAsyncRequestFinishedWrapper(const SignalAsyncRequestFinishedWrapper&) = delete;
    SignalAsyncRequestFinishedWrapper(SignalAsyncRequestFinishedWrapper&&) = delete;
    SignalAsyncRequestFinishedWrapper& operator=(const SignalAsyncRequestFinishedWrapper&) = delete;
    SignalAsyncRequestFinishedWrapper& operator=(SignalAsyncRequestFinishedWrapper&&) = delete;

private:
    HWND m_window;
};
} // namespace VantryIntegrationApi
