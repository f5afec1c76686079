#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrRegisteredEnum.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <set>
#include <string>
#include <thread>
#include <vector>

// What many threads may do at once: read objects that nobody writes, hold and drop handles, look up and register names,
// report errors. The thread sanitizer judges them.

using namespace core_test;

namespace {

constexpr int THREADS = 8;
constexpr int ROUNDS = 500;

/** Runs `work(thread)` in every thread, all started together. */
void inParallel(const std::function<void(int)>& work) {
    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; ++i) {
        threads.emplace_back([&, i] {
            while (!go) {
                std::this_thread::yield();
            }
            work(i);
        });
    }
    go = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace

TEST(ConcurrentReads, of_properties_give_each_thread_the_same_values) {
    const Held<> node;
    auto* child = new Node;
    node->weight.setValue(2.5f);
    node->title.setValue("wall");
    setList(node->numbers, {1.0f, 2.0f, 3.0f});
    setList(node->children, {child});
    std::atomic<int> wrong{0};
    inParallel([&](int) {
        for (int i = 0; i < ROUNDS; ++i) {
            wrong += lyrGetValue(node.get(), WEIGHT, 0.0f) != 2.5f;
            wrong += std::string(lyrGetValue<const char*>(node.get(), TITLE, "")) != "wall";
            float items[3] = {};
            wrong += !node->numbers.getArrayItems(0, 2, items) || items[2] != 3.0f;
            const float* locked = node->numbers.lockArrayPtr();
            wrong += locked[1] != 2.0f;
            node->numbers.unlockArrayPtr(locked);
            wrong += node->children.view()[0].getLink() != child;
            wrong += child->getParentLink().getOwner() != node.get();
            wrong += !node->getMetaClass().isOfType("LyrObject");
        }
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_TRUE(setList(node->numbers, {4.0f}));  // every lock was given back
}

TEST(ConcurrentReads, by_handles_leave_the_object_as_often_held_as_before) {
    Held<> node;
    bool gone = false;
    node->onDestroyed = [&] { gone = true; };
    {
        const LyrObjectPtr shared(node.get());
        inParallel([&](int) {
            for (int i = 0; i < ROUNDS; ++i) {
                LyrObjectPtr copied(shared);
                const LyrObjectPtr moved(std::move(copied));
                ASSERT_GE(moved->getRefCount(), 3);
            }
        });
    }
    EXPECT_EQ(node->getRefCount(), 1);
    node.drop();
    EXPECT_TRUE(gone);
}

TEST(ConcurrentReads, let_the_last_of_many_handles_destroy_the_object_once) {
    for (int round = 0; round < 50; ++round) {
        std::atomic<int> ends{0};
        auto* node = new Node;
        node->onDestroyed = [&] { ++ends; };
        std::vector<LyrObjectPtr> handles(THREADS, LyrObjectPtr(node));
        inParallel([&](int i) { handles[std::size_t(i)] = LyrObjectPtr(); });
        ASSERT_EQ(ends, 1);
    }
}

TEST(ConcurrentReads, of_names_go_on_while_names_are_registered) {
    std::atomic<int> wrong{0};
    inParallel([&](int thread) {
        for (int i = 0; i < ROUNDS; ++i) {
            wrong += Lyrenum("Type", true) != 204800427;
            wrong += Lyr::Gradient.getName() != "Gradient";
            const std::string name = "core_test.thread" + std::to_string(thread);
            const LyrRegisteredEnum own(name.c_str(), false, MODULE);
            wrong += Lyrenum(name.c_str(), false) != own.get();
            const LyrRegisteredEnum common("core_test.common", false, MODULE);
            wrong += common.get() == -1;
        }
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(LyrIdentifierRegistry::moduleRegistrationCount(MODULE), 0);
    EXPECT_EQ(LyrIdentifierRegistry::registrationCount("core_test.common"), 0);
}

TEST(ConcurrentReads, of_classes_and_live_objects_agree) {
    const Held<> one;
    const Held<SpecialNode> two;
    std::atomic<int> wrong{0};
    inParallel([&](int) {
        for (int i = 0; i < ROUNDS; ++i) {
            wrong += LyrMetaClass::find("TestNode") != &Node::metaClass();
            LyrClass* found[4] = {};
            wrong += LyrClassManager::findObjects(found, 4, LyrClassManager::SearchPattern("TestNode")) != 2;
            wrong += found[0] != one.get();
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST(ConcurrentReads, report_every_error) {
    class Counting : public LyrError::Listener {
    public:
        std::atomic<int> count{0};
        bool errorEmitted(const LyrError::Message&) override {
            ++count;
            return true;
        }
    } counting;
    inParallel([](int) {
        for (int i = 0; i < ROUNDS; ++i) {
            LyrError::emitError(LyrError::Message(Lyr::Failed));
        }
    });
    EXPECT_EQ(counting.count, THREADS * ROUNDS);
}

TEST(ConcurrentReads, of_the_time_never_give_the_same_stamp_twice) {
    std::vector<std::vector<LyrTimestamp>> stamps(THREADS);
    inParallel([&](int thread) {
        for (int i = 0; i < ROUNDS; ++i) {
            stamps[std::size_t(thread)].push_back(LyrTimestamp::getCurrentTimestamp());
        }
    });
    std::set<LyrTimestamp> all;
    for (const auto& own : stamps) {
        EXPECT_TRUE(std::is_sorted(own.begin(), own.end()));
        all.insert(own.begin(), own.end());
    }
    EXPECT_EQ(all.size(), std::size_t(THREADS * ROUNDS));
}
