// Colouring of large arrays: every kernel of the machine, the scalar path and a plain copy in turn.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <thread>

#include <colortable/model/eval/ColorPlan.h>
#include <colortable/model/eval/KernelTarget_p.h>

#include "BenchTables.h"
#include "PlainCopy.h"
#include "Rounds.h"

using namespace lys::eval;

namespace {

constexpr int64_t largeCount = 10'000'000;
constexpr int64_t scalarShare = 32;  // the scalar path colours one value in so many: it is that much slower

struct AlignedFree {
    void operator()(float* p) const { std::free(p); }
};

/// Buffers shared by all cases: fresh memory would cost more in page faults than the colouring itself.
float* sharedOutput() {
    static const std::unique_ptr<float, AlignedFree> memory(
        static_cast<float*>(std::aligned_alloc(64, largeCount * 4 * sizeof(float))));
    return memory.get();
}

const std::vector<float>& sharedInput(Input input) {
    static std::vector<float> inputs[3];
    std::vector<float>& values = inputs[static_cast<int>(input)];
    if (values.empty())
        values = inputValues(input, largeCount);
    return values;
}

/// Runs work(first, count) for each thread's part of the array.
template <class Work>
void inParts(int threads, int64_t count, const Work& work) {
    std::vector<std::thread> others;
    const int64_t part = count / threads / 16 * 16;
    for (int t = 1; t < threads; ++t)
        others.emplace_back([=, &work] { work(t * part, part); });
    work(0, part);
    for (std::thread& thread : others)
        thread.join();
}

void report(benchmark::State& state, const Rounds& rounds, int64_t count) {
    const double copy = rounds.median("copy");
    const double perValue = 1e9 / static_cast<double>(count);
    state.counters["copy_ns"] = copy * perValue;
    const double scalar = rounds.median("scalar") * static_cast<double>(scalarShare);
    state.counters["scalar_ns"] = scalar * perValue;
    for (const KernelTarget target : allKernelTargets) {
        if (!isKernelTargetAvailable(target))
            continue;
        const std::string name = kernelTargetName(target);
        state.counters[name + "_ns"] = rounds.median(name) * perValue;
        state.counters[name + "/copy"] = rounds.median(name) / copy;
        state.counters["scalar/" + name] = scalar / rounds.median(name);
    }
}

void colorizeLarge(benchmark::State& state, const BenchTable& table, Input input, int threads) {
    const std::vector<float>& values = sharedInput(input);
    float* out = sharedOutput();
    Rounds rounds;
    rounds.add("copy", [&] {
        inParts(threads, largeCount,
                [&](int64_t first, int64_t n) { plainCopy(n, &values[size_t(first)], out + 4 * first); });
    });
    for (const KernelTarget target : allKernelTargets) {
        if (!isKernelTargetAvailable(target))
            continue;
        rounds.add(kernelTargetName(target), [&, target] {
            inParts(threads, largeCount, [&](int64_t first, int64_t n) {
                ColorPlan plan;
                plan.buildFor(target, table.view());
                plan.colorize(n, &values[size_t(first)], out + 4 * first);
            });
        });
    }
    rounds.add("scalar", [&] { scalarColors(table.view(), largeCount / scalarShare, values.data(), out); });
    rounds.run();  // warms buffers up; its times are not kept apart, the median does not mind
    for (auto _ : state)
        state.SetIterationTime(rounds.run());
    report(state, rounds, largeCount);
}

void add(const BenchTable& table, Input input = Input::Random, int threads = 1) {
    static const char* const inputNames[] = {"random", "ramp", "volume"};
    const std::string name =
        table.name + "/" + inputNames[static_cast<int>(input)] + "/10M/" + std::to_string(threads) + "thread";
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State& state) { colorizeLarge(state, table, input, threads); })
        ->UseManualTime()
        ->Iterations(11)
        ->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv) {
    const BenchTable rainbow = ruleTable("rainbow", Rule::Rainbow);
    const BenchTable steps = manySections("30 steps", 32, Rule::Constant);
    const BenchTable gradients = manySections("16 gradients", 18, Rule::Gradient);
    const BenchTable mixed = manySections("mixed 10", 12, Rule::None);
    add(steps);
    add(gradients);
    add(rainbow);
    add(ruleTable("reverse rainbow", Rule::InvertedRainbow));
    add(ruleTable("hue cycle", Rule::HueCycle));
    add(ruleTable("thirds", Rule::BlackGreenBlueRed));
    add(ruleTable("one gradient", Rule::Gradient));
    add(mixed);
    for (const int64_t sections : {3, 10, 100, 1000, 10000}) {
        add(manySections(std::to_string(sections) + " sections uniform", sections, Rule::Constant));
        add(manySections(std::to_string(sections) + " sections skewed", sections, Rule::Constant, Spacing::Skewed));
    }
    add(manySections("1000 gradients uniform", 1000, Rule::Gradient));
    for (const BenchTable* table : {&rainbow, &steps, &gradients, &mixed}) {
        add(*table, Input::Ramp);
        add(*table, Input::Volume);
        add(withFailingEnd(*table));
        add(*table, Input::Random, 2);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
