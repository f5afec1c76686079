#include "ToolkitApplication.h"
#include "fuzz/FuzzTargets.h"

#include <lyr_core/LyrError.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

// lys_fuzz --target=NAME [the fuzzing library's options] CORPUS…

namespace {

class Silence : public LyrError::Listener {
public:
    bool errorEmitted(const LyrError::Message&) override { return true; }
};

const fuzz::Target* sTarget = nullptr;

double processorTime() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/** Short inputs are run more often; an option of the caller comes later and counts. */
void limitLength(int* count, char*** arguments) {
    static std::string limit = "-max_len=" + std::to_string(sTarget->longest);
    static std::vector<char*> all(*arguments, *arguments + *count);
    all.insert(all.begin() + 1, limit.data());
    all.push_back(nullptr);
    ++*count;
    *arguments = all.data();
}

void chooseTarget(int count, char** arguments) {
    constexpr std::string_view option = "--target=";
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        for (const fuzz::Target& target : fuzz::targets()) {
            if (argument.starts_with(option) && argument.substr(option.size()) == target.name) {
                sTarget = &target;
            }
        }
    }
}

}  // namespace

void fuzz::broken(const char* promise) {
    std::fprintf(stderr, "broken: %s\n", promise);
    std::abort();
}

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments) {
    chooseTarget(*count, *arguments);
    if (!sTarget) {
        std::fputs("give --target=NAME, one of:\n", stderr);
        for (const fuzz::Target& target : fuzz::targets()) {
            std::fprintf(stderr, "  %s\n", target.name);
        }
        std::exit(2);
    }
    limitLength(count, arguments);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const ToolkitApplication application;
    static Silence silence;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Processor time: on a busy machine a second passes by the clock with nothing done.
    const double begin = processorTime();
    sTarget->run({data, size});
    fuzz::require(processorTime() - begin < 1.0, "an input takes less than a second");
    return 0;
}
