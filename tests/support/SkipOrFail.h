#pragma once

#include <cstdlib>
#include <string_view>

/// Whether a test that can't run here has to fail: where everything it needs is meant to be installed.
inline bool SkippingIsFailure() {
    const char* ci = std::getenv("CI");
    return ci && ci == std::string_view("true");
}

/// Leaves a test that can't run for want of something on the machine: a failure in CI, a skip that says why
/// elsewhere.
#define SKIP_OR_FAIL(reason)                                                                                 \
    do {                                                                                                     \
        if (SkippingIsFailure())                                                                             \
            FAIL() << (reason);                                                                              \
        GTEST_SKIP() << (reason);                                                                            \
    } while (false)
