#include <array>
#include <atomic>
#include <thread>

#include "ModelTools.h"

using namespace model;

namespace {

constexpr int THREADS = 16;
constexpr int VALUES = 1000;

/** Runs `work(thread)` in all threads at once. */
template <class Work>
void inThreads(Work work) {
    std::atomic<int> waiting{THREADS};
    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; ++i) {
        threads.emplace_back([&, i] {
            --waiting;
            while (waiting > 0) {
                std::this_thread::yield();
            }
            work(i);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

std::vector<float> ramp(float from, float to) {
    std::vector<float> values(VALUES);
    for (int i = 0; i < VALUES; ++i) {
        values[static_cast<std::size_t>(i)] = from + (to - from) * static_cast<float>(i) / VALUES;
    }
    return values;
}

/** A table with a section of every rule that reads others or itself. */
Held<Table> mixedTable() {
    auto table = newTable();
    std::vector<LyrObject*> sections;
    for (const Lyrenum type :
         {Lyr::Continue, Lyr::Rainbow, Lyr::HueCycle, Lyr::Gradient, Lyr::Constant, Lyr::Continue}) {
        LyrObject* section = redSection(0.5f);
        EXPECT_TRUE(setType(*section, type));
        sections.push_back(section);
    }
    EXPECT_TRUE(setList<float>(*table, Lyr::PositionList, {-2, -1, 0, 1, 2}));
    EXPECT_TRUE(setSections(*table, sections));
    return table;
}

}  // namespace

TEST(LyrColorLookupTableThreads, sixteen_threads_colour_the_values_of_one_table_alike) {
    const Errors errors;
    const auto table = mixedTable();
    const std::vector<float> values = ramp(-3, 3);
    std::vector<Color> expected(VALUES);
    ASSERT_TRUE(table->getColors(VALUES, values.data(), expected.data()));
    std::array<int, THREADS> wrong{};
    inThreads([&](int thread) {
        const Table& shared = *table;
        std::vector<Color> many(VALUES);
        int bad = 0;
        for (int round = 0; round < 5; ++round) {
            bad += shared.getColors(VALUES, values.data(), many.data()) ? 0 : 1;
            for (std::size_t i = 0; i < VALUES; ++i) {
                Color one;
                bad += shared.getColor(values[i], one) && sameBits(one, expected[i]) && sameBits(many[i], expected[i])
                           ? 0
                           : 1;
            }
        }
        wrong[static_cast<std::size_t>(thread)] = bad;
    });
    EXPECT_EQ(wrong, (std::array<int, THREADS>{}));
}

TEST(LyrColorLookupTableThreads, sixteen_threads_ask_one_section_with_its_neighbours) {
    const Errors errors;
    const auto table = mixedTable();
    const Section& first = sectionAt(*table, 0);
    const Section& rainbow = sectionAt(*table, 1);
    const std::vector<float> values = ramp(-3, 3);
    std::array<int, THREADS> wrong{};
    inThreads([&](int thread) {
        int bad = 0;
        for (const float value : values) {
            Color continued;
            Color middle;
            bad +=
                first.getColor({-5, -2}, value, continued, nullptr, &rainbow) && continued == Color(0, 0, 1, 1) ? 0 : 1;
            bad += rainbow.getColor({value - 1, value + 1}, value, middle, &first, nullptr) ? 0 : 1;
        }
        wrong[static_cast<std::size_t>(thread)] = bad;
    });
    EXPECT_EQ(wrong, (std::array<int, THREADS>{}));
}

TEST(LyrColorLookupTableThreads, sixteen_threads_report_a_bad_link_once_for_each_call) {
    Errors errors;
    const auto table = newTable();
    std::vector<LyrObject*> sections = sectionsOf(*table);
    sections[1] = nullptr;
    ASSERT_TRUE(setSections(*table, sections));
    inThreads([&](int) {
        const Table& shared = *table;
        const float value = 0.0f;
        for (int round = 0; round < 20; ++round) {
            Color out = untouched;
            const bool refused = !shared.getColor(value, out) && !shared.getColors(1, &value, &out);
            EXPECT_TRUE(refused && sameBits(out, untouched));
        }
    });
    EXPECT_EQ(errors.take(), std::vector<Errors::Entry>(THREADS * 40, Errors::Entry{table.get(), -204799995}));
}
