#pragma once

#include "ScarceMemory.h"

#include <lyr_core/LyrError.h>

#include <gtest/gtest.h>

#include <memory>

namespace scarce {

/** Counts the errors that are reported while it lives. */
class ErrorCount : public LyrError::Listener {
public:
    bool errorEmitted(const LyrError::Message&) override {
        ++count;
        return true;
    }
    int count = 0;
};

/** Runs `work`, which answers whether it succeeded, on a fresh fixture for every allocation that may fail, once and for
 * good, until none fails any more. Nothing may be thrown, and a failure must have been reported. `judge` looks at the
 * fixture after each run, with memory to spare, and is told whether the work was done. Gives the number of allocations
 * that failed once each. */
template <class Fixture, class Work, class Judge>
int withEachAllocationFailing(Work work, Judge judge) {
    int failures = 0;
    for (const ScarceMemory::Failing how : {ScarceMemory::Failing::Once, ScarceMemory::Failing::ForGood}) {
        for (int n = 0; n < 20000 && !testing::Test::HasFailure(); ++n) {
            SCOPED_TRACE((how == ScarceMemory::Failing::Once ? "once: allocation " : "for good: allocation ") +
                         std::to_string(n));
            auto fixture = std::make_unique<Fixture>();
            bool done = false;
            bool failed = false;
            ErrorCount errors;
            {
                const ScarceMemory memory(n, how);
                EXPECT_NO_THROW(done = work(*fixture));
                failed = memory.hasFailed();
            }
            EXPECT_TRUE(done || errors.count > 0) << "failed in silence";
            judge(*fixture, done);
            if (!failed) {
                EXPECT_TRUE(done);
                break;
            }
            failures += how == ScarceMemory::Failing::Once ? 1 : 0;
        }
    }
    return failures;
}

}  // namespace scarce
