#pragma once

#include "ScarceMemory.h"

#include <lyr_core/LyrError.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>

namespace scarce {

/** More allocations than any operation that is tested makes. */
constexpr int MOST_ALLOCATIONS = 20000;

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
 * fixture after each run, with memory to spare, and is told whether the work was done and, if it asks for it, how many
 * errors were reported. Gives the number of allocations that failed once each. */
template <class Fixture, class Work, class Judge>
int withEachAllocationFailing(Work work, Judge judge) {
    int failures = 0;
    for (const ScarceMemory::Failing how : {ScarceMemory::Failing::Once, ScarceMemory::Failing::ForGood}) {
        bool failed = true;
        for (int n = 0; failed && !testing::Test::HasFailure(); ++n) {
            SCOPED_TRACE((how == ScarceMemory::Failing::Once ? "once: allocation " : "for good: allocation ") +
                         std::to_string(n));
            if (n == MOST_ALLOCATIONS) {
                ADD_FAILURE() << "no end";
                break;
            }
            auto fixture = std::make_unique<Fixture>();
            bool done = false;
            bool threw = false;
            ErrorCount errors;
            {
                const ScarceMemory memory(n, how);
                try {
                    done = work(*fixture);
                } catch (...) {
                    threw = true;  // saying so takes memory
                }
                failed = memory.hasFailed();
            }
            EXPECT_FALSE(threw) << "something was thrown, by the work or by what it expected in vain";
            EXPECT_TRUE(done || errors.count > 0) << "failed in silence";
            EXPECT_TRUE(done || failed) << "failed with memory to spare";
            if constexpr (std::is_invocable_v<Judge, Fixture&, bool, int>) {
                judge(*fixture, done, errors.count);
            } else {
                judge(*fixture, done);
            }
            failures += failed && how == ScarceMemory::Failing::Once ? 1 : 0;
        }
    }
    return failures;
}

}  // namespace scarce
