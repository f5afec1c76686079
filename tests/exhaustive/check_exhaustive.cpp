// Every float from 0 to 1 as a place in an interval, for every rule, by every kernel that this machine can run, against
// the scalar path. Takes minutes; ends with status 1 when a single bit differs.
#include <colortable/model/eval/ColorPlan.h>
#include <colortable/model/eval/KernelTarget_p.h>
#include <algorithm>
#include <atomic>
#include <bit>
#include <chrono>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace lys::eval;

namespace {

constexpr uint32_t bitsOfOne = 0x3F800000;  // all floats from 0 to 1 are 0 … this
constexpr uint32_t chunk = 4096;

struct NamedRule {
    Rule rule;
    const char* name;
};

constexpr NamedRule rules[] = {{Rule::Constant, "constant"},
                               {Rule::Gradient, "gradient"},
                               {Rule::Rainbow, "rainbow"},
                               {Rule::InvertedRainbow, "inverted rainbow"},
                               {Rule::BlackGreenBlueRed, "black green blue red"},
                               {Rule::HueCycle, "hue cycle"},
                               {Rule::Continue, "continue"}};

SectionData section(Rule rule, int seed) {
    static constexpr float values[] = {0.1f, 0.9f, -0.5f, 1.0f, 0.25f, 3.0f, 0.7f};
    SectionData s;
    s.rule = rule;
    for (int c = 0; c < channelCount && (rule == Rule::Constant || rule == Rule::Gradient); ++c) {
        s.has[c] = true;
        s.first[c] = values[(seed + c) % 7];
        s.last[c] = values[(seed + c * 3) % 7];
    }
    return s;
}

struct Table {
    std::vector<float> positions;
    std::vector<SectionData> sections;

    TableView view() const { return {positions.data(), static_cast<int64_t>(positions.size()), sections.data()}; }
};

/// The rule from 0 to 1 alone between constants, among a few sections of all rules, or among many: the kernels look
/// intervals and colours up in another manner each time. What Continue repeats is the same constant everywhere.
Table tableAround(Rule rule, int sectionsBefore) {
    Table table;
    for (int k = -sectionsBefore; k <= 1 + sectionsBefore; ++k)
        table.positions.push_back(static_cast<float>(k));
    for (int k = 0; k <= static_cast<int>(table.positions.size()); ++k)
        table.sections.push_back(section(rules[sectionsBefore > 0 ? k % 6 : 0].rule, k));
    table.sections[static_cast<size_t>(sectionsBefore)] = section(Rule::Constant, 5);
    table.sections[static_cast<size_t>(sectionsBefore) + 1] = section(rule, 1);
    return table;
}

struct Work {
    size_t table;
    std::string name;
    std::unique_ptr<ColorPlan> plan;
};

class Check {
public:
    explicit Check(Rule rule) {
        for (const int before : {0, 4, 40})
            tables_.push_back(tableAround(rule, before));
    }

    bool prepare() {
        for (const KernelTarget target : allKernelTargets) {
            for (size_t i = 0; i < tables_.size() && isKernelTargetAvailable(target); ++i) {
                work_.push_back({i,
                                 std::string(kernelTargetName(target)) + ", " +
                                     std::to_string(tables_[i].sections.size()) + " sections",
                                 std::make_unique<ColorPlan>()});
                if (!work_.back().plan->buildFor(target, tables_[i].view()) || !work_.back().plan->isFlat())
                    return false;
            }
        }
        return true;
    }

    /// Checks all floats with several threads; returns the number of colours that differ.
    uint64_t run() {
        std::vector<std::thread> threads;
        for (unsigned i = 0; i < std::max(1u, std::thread::hardware_concurrency()); ++i)
            threads.emplace_back([this] { runPart(); });
        for (std::thread& thread : threads)
            thread.join();
        return different_;
    }

    size_t planCount() const { return work_.size(); }

private:
    void runPart() {
        std::vector<float> values(chunk);
        std::vector<float> want(chunk * size_t{channelCount});
        std::vector<float> got(want.size());
        while (true) {
            const uint32_t piece = next_.fetch_add(1);
            const uint32_t first = piece * chunk;
            if (first > bitsOfOne)
                return;
            const uint32_t count = std::min(chunk, bitsOfOne - first + 1);
            for (uint32_t i = 0; i < count; ++i)
                values[i] = std::bit_cast<float>(first + i);
            if (!scalarColors(tables_[0].view(), count, values.data(), want.data()))
                different_ += count;
            for (const Work& work : work_) {
                // The larger tables share the floats among them, and 0 belongs to the section before in them.
                if (work.table == 0)
                    compare(work, values.data(), count, want.data(), &got);
                else if (piece % 2 == work.table - 1)
                    compare(work, values.data() + (piece == 0), count - (piece == 0),
                            want.data() + (piece == 0 ? channelCount : 0), &got);
            }
        }
    }

    void compare(const Work& work, const float* values, uint32_t count, const float* want, std::vector<float>* got) {
        std::fill(got->begin(), got->end(), -7.0f);
        const int64_t failing = work.plan->colorize(count, values, got->data());
        if (failing < 0 && std::memcmp(got->data(), want, size_t{count} * channelCount * sizeof(float)) == 0)
            return;
        uint64_t differing = 0;
        for (size_t at = 0; at < size_t{count} * channelCount; at += channelCount)
            differing += std::memcmp(got->data() + at, want + at, channelCount * sizeof(float)) != 0 ? 1 : 0;
        different_ += std::max<uint64_t>(differing, 1);
        std::cerr << ("  " + work.name + ": differs near " + std::to_string(values[0]) + "\n");
    }

    std::vector<Table> tables_;
    std::vector<Work> work_;
    std::atomic<uint32_t> next_{0};
    std::atomic<uint64_t> different_{0};
};

}  // namespace

int main() {
    using Clock = std::chrono::steady_clock;
    uint64_t different = 0;
    for (const NamedRule& rule : rules) {
        const Clock::time_point begin = Clock::now();
        Check check(rule.rule);
        if (!check.prepare()) {
            std::cerr << "No plan for " << rule.name << ".\n";
            return 1;
        }
        const uint64_t here = check.run();
        different += here;
        std::cout << std::setw(21) << rule.name << ": " << here << " of " << uint64_t{bitsOfOne} + 1
                  << " colours differ in " << check.planCount() << " kernels and tables together, "
                  << std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - begin).count() << " s"
                  << std::endl;
    }
    return different == 0 ? 0 : 1;
}
