#include "Operations.h"
#include "Failure.h"

#include <exception>
#include <utility>

void Operations::run(Operation operation)
{
    m_running = std::move(operation);
    m_view.showBusy(m_running->progress);
    try {
        m_running->start();
    } catch (const std::exception& error) {
        // No thread was started, so no message will come, and there is no new result to read.
        end({notStarted, describe(error)});
    }
}

void Operations::finished()
{
    if (isRunning()) { // any program can post a message of that number
        end(GetLastResponse());
    }
}

/// The operation is over before anything else happens: what follows on it may start another one, or show a
/// dialog, which lets the window's other messages in.
void Operations::end(const ResponseStatus& response)
{
    const Operation ended = *std::exchange(m_running, std::nullopt);
    const ResponseStatus outcome = response; // the library's own is overwritten by the next operation
    const bool isSuccess = outcome.httpStatusCode == ended.successCode;
    const auto& takeOver = isSuccess ? ended.succeeded : ended.failed;
    if (takeOver) {
        takeOver();
    }
    if (isSuccess && ended.next && !m_isWrappingUp) {
        ended.next();
    }
    if (!isRunning()) {
        m_view.showIdle();
    }
    if (!isSuccess && !m_isWrappingUp) {
        m_view.showFailure(ended.failure, outcome);
    }
}
