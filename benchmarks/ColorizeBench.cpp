// Colouring of large arrays: every kernel of the machine, the scalar path and a plain copy in turn. Figures are
// medians; columns named after kernels are multiples of the copy's time in the same run.
#include <benchmark/benchmark.h>
#include <colortable/model/eval/ColorPlan.h>
#include <colortable/model/eval/KernelTarget_p.h>

#include <cstdlib>
#include <memory>
#include <thread>

#include "BenchTables.h"
#include "PlainCopy.h"
#include "RatioReporter.h"
#include "Rounds.h"

using namespace lys::eval;

namespace {

constexpr int64_t largeCount = 10'000'000;
constexpr int64_t scalarShare = 32;  // the scalar path colours one value in so many: it is that much slower

struct AlignedFree {
    void operator()(float* p) const { std::free(p); }
};

/// One output for all cases: fresh memory would cost more in page faults than the colouring itself.
float* sharedOutput() {
    static const std::unique_ptr<float, AlignedFree> memory(
        static_cast<float*>(std::aligned_alloc(64, largeCount * 4 * sizeof(float))));
    return memory.get();
}

std::vector<float>& sharedInput(Input input) {
    static std::vector<float> inputs[3];
    std::vector<float>& values = inputs[static_cast<int>(input)];
    if (values.empty())
        values = inputValues(input, largeCount);
    return values;
}

/// Puts a value that fails near the front, so that nearly everything is coloured, and takes it back in the end.
class FailingValue {
public:
    FailingValue(std::vector<float>* values, bool present) : at_((*values)[7]), before_(at_) {
        if (present)
            at_ = 5.0f;
    }
    ~FailingValue() { at_ = before_; }

private:
    float& at_;
    float before_;
};

/// Runs work(first, count) for each thread's part of the array.
template <class Work>
void inParts(int threads, const Work& work) {
    std::vector<std::thread> others;
    const int64_t part = largeCount / threads / 16 * 16;
    for (int t = 1; t < threads; ++t)
        others.emplace_back([=, &work] { work(t * part, part); });
    work(0, part);
    for (std::thread& thread : others)
        thread.join();
}

void report(benchmark::State& state, const Rounds& rounds) {
    constexpr double perValue = 1e9 / largeCount;
    const double copy = rounds.median("copy");
    const double scalar = rounds.median("scalar") * scalarShare;
    state.counters["copy ns"] = copy * perValue;
    state.counters["scalar ns"] = scalar * perValue;
    for (const KernelTarget target : allKernelTargets) {
        if (!isKernelTargetAvailable(target))
            continue;
        const std::string name = kernelTargetName(target);
        state.counters[name] = rounds.median(name) / copy;
        if (target == KernelTarget::Plain)
            state.counters["sc/plain"] = scalar / rounds.median(name);
    }
}

struct Case {
    BenchTable table;
    Input input = Input::Random;
    int threads = 1;
    bool failing = false;
};

void colorize(benchmark::State& state, const Case& what) {
    std::vector<float>& values = sharedInput(what.input);
    const FailingValue failing(&values, what.failing);
    float* out = sharedOutput();
    Rounds rounds;
    rounds.add("copy", [&] {
        inParts(what.threads, [&](int64_t first, int64_t n) { plainCopy(n, values.data() + first, out + 4 * first); });
    });
    for (const KernelTarget target : allKernelTargets) {
        if (!isKernelTargetAvailable(target))
            continue;
        rounds.add(kernelTargetName(target), [&, target] {
            inParts(what.threads, [&](int64_t first, int64_t n) {
                ColorPlan plan;
                if (plan.buildFor(target, what.table.view()))
                    plan.colorize(n, values.data() + first, out + 4 * first);
            });
        });
    }
    rounds.add("scalar", [&] { scalarColors(what.table.view(), largeCount / scalarShare, values.data() + 16, out); });
    rounds.run();
    rounds.forget();  // the first round meets cold memory
    for (auto _ : state)
        state.SetIterationTime(rounds.run());
    report(state, rounds);
}

void add(const Case& what) {
    static const char* const inputNames[] = {"random", "ramp", "volume"};
    const std::string name = what.table.name + ", " + inputNames[static_cast<int>(what.input)] +
                             (what.threads > 1 ? ", " + std::to_string(what.threads) + " threads" : "") +
                             (what.failing ? ", failing at the front" : "");
    benchmark::RegisterBenchmark(name.c_str(), [what](benchmark::State& state) { colorize(state, what); })
        ->UseManualTime()
        ->Iterations(15)
        ->Unit(benchmark::kMillisecond);
}

void addAll() {
    const BenchTable tables[] = {
        manySections("30 steps", 32, Rule::Constant), manySections("16 gradients", 18, Rule::Gradient),
        ruleTable("rainbow", Rule::Rainbow),          ruleTable("reverse rainbow", Rule::InvertedRainbow),
        ruleTable("hue cycle", Rule::HueCycle),       ruleTable("black green blue red", Rule::BlackGreenBlueRed),
        manySections("mixed 10", 12, Rule::None)};
    for (const BenchTable& table : tables)
        add({table});
    for (const BenchTable& table : tables) {
        add({table, Input::Random, 2});
        add({table, Input::Ramp});
        add({table, Input::Volume});
        add({withFailingEnd(table), Input::Random, 1, true});
    }
    for (const int64_t sections : {3, 10, 100, 1000, 10000}) {
        const std::string count = std::to_string(sections);
        add({manySections(count + " sections uniform", sections, Rule::Constant)});
        add({manySections(count + " sections skewed", sections, Rule::Constant, Spacing::Skewed)});
        add({manySections(count + " gradients uniform", sections, Rule::Gradient)});
    }
}

}  // namespace

int main(int argc, char** argv) {
    addAll();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter({"copy ns", "scalar ns", "AVX-512", "AVX2", "SSE4", "plain", "sc/plain"});
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
