// Looks for leaks when the tests are through, not at the end of the process: the threads of the REST SDK's
// pool are still there, with what they hold, and would be gone by then without having freed it.
#include <gtest/gtest.h>
#include <sanitizer/lsan_interface.h>

#include <memory>

namespace
{
class LeakCheck : public testing::Environment
{
public:
    void TearDown() override { __lsan_do_leak_check(); }
};

const auto* const leakCheck = testing::AddGlobalTestEnvironment(std::make_unique<LeakCheck>().release());
} // namespace
