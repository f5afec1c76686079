// Calls with few values on a table object: nanoseconds for each call, medians. "one by one" asks getColor for every
// value; "plan" builds the flat plan alone, out of data already read; "copy" moves the same bytes.
#include <benchmark/benchmark.h>
#include <colortable/model/eval/ColorPlan.h>

#include <iostream>

#include "BenchTables.h"
#include "ObjectTable.h"
#include "PlainCopy.h"
#include "RatioReporter.h"
#include "Rounds.h"

using namespace lys::eval;

namespace {

constexpr int64_t mostValues = 4096;
constexpr int rounds = 200;

/// Enough calls for a clock to tell: about 50 us of the slowest piece.
int callsFor(int64_t count) {
    return static_cast<int>(std::max<int64_t>(2, 1024 / count));
}

template <class Work>
std::function<void()> repeated(int calls, Work work) {
    return [=] {
        for (int i = 0; i < calls; ++i)
            work();
    };
}

void call(benchmark::State& state, const BenchTable& plain, int64_t count) {
    alignas(64) static float out[mostValues * channelCount];
    static const std::vector<float> values = inputValues(Input::Random, mostValues);
    const ObjectTable held(plain);
    if (!held.isComplete()) {
        state.SkipWithError("the table object refused its contents");
        return;
    }
    const LyrColorLookupTable& table = held.object();
    auto* colors = reinterpret_cast<LyrRGBA<float>*>(out);
    const int calls = callsFor(count);
    ColorPlan made;
    made.build(plain.view());
    Rounds pieces;
    pieces.add("getColors", repeated(calls, [&, count] { table.getColors(count, values.data(), colors); }));
    pieces.add("one by one", repeated(calls, [&, count] {
                   for (int64_t i = 0; i < count; ++i)
                       table.getColor(values[static_cast<size_t>(i)], colors[i]);
               }));
    pieces.add("scalar", repeated(calls, [&, count] { scalarColors(plain.view(), count, values.data(), out); }));
    pieces.add("plan", repeated(calls, [&] {
                   ColorPlan plan;
                   benchmark::DoNotOptimize(plan.build(plain.view()));
               }));
    pieces.add("colorize", repeated(calls, [&, count] { made.colorize(count, values.data(), out); }));
    pieces.add("copy", repeated(calls, [&, count] { plainCopy((count + 15) / 16 * 16, values.data(), out); }));
    pieces.run();
    pieces.forget();
    for (auto _ : state)
        state.SetIterationTime(pieces.run());
    for (const char* name : {"getColors", "one by one", "scalar", "plan", "colorize", "copy"})
        state.counters[name] = pieces.median(name) * 1e9 / calls;
}

void add(const BenchTable& table, int64_t count) {
    const std::string name = table.name + ", " + std::to_string(count) + (count == 1 ? " value" : " values");
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) { call(state, table, count); })
        ->UseManualTime()
        ->Iterations(rounds);
}

}  // namespace

int main(int argc, char** argv) {
    for (const BenchTable& table :
         {ruleTable("rainbow", Rule::Rainbow), ruleTable("hue cycle", Rule::HueCycle),
          manySections("30 steps", 32, Rule::Constant), manySections("30 gradients", 32, Rule::Gradient),
          manySections("mixed 10", 12, Rule::None), manySections("1000 sections", 1000, Rule::Constant)}) {
        for (const int64_t count : {int64_t{1}, int64_t{16}, int64_t{256}, mostValues})
            add(table, count);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter({"getColors", "one by one", "scalar", "plan", "colorize", "copy"});
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
