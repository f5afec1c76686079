#include "ToolkitApplication.h"
#include "fuzz/FuzzTargets.h"

#include <lyr_core/LyrError.h>

#include <Sanitizers.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>

// Every file of the corpora, and what the fuzzer found once, through the function that it is for.

namespace {

class Silence : public LyrError::Listener {
public:
    bool errorEmitted(const LyrError::Message&) override { return true; }
};

class Replay : public testing::TestWithParam<fuzz::Target>, ToolkitApplication {
    const Silence mSilence;
};

std::vector<unsigned char> contentOf(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return std::vector<unsigned char>(std::istreambuf_iterator<char>(stream), {});
}

}  // namespace

void fuzz::broken(const char* promise) {
    ADD_FAILURE() << "broken: " << promise;
}

TEST_P(Replay, of_every_file_keeps_what_is_promised_and_each_reader_takes_one_in_less_than_a_second) {
    const std::filesystem::path folder = std::filesystem::path(FUZZ_CORPUS) / GetParam().name;
    int count = 0;
    fuzz::Accepted accepted = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        SCOPED_TRACE(entry.path().filename().string());
        const std::vector<unsigned char> bytes = contentOf(entry.path());
        const std::clock_t begin = std::clock();
        accepted |= GetParam().run(bytes);
        EXPECT_LT(std::clock() - begin, CLOCKS_PER_SEC * SANITIZER_SLOWDOWN);
        ++count;
    }
    EXPECT_GE(count, 3) << "files in " << folder;
    EXPECT_EQ(accepted, GetParam().readers) << "a reader, one bit each, takes no file of " << folder;
}

INSTANTIATE_TEST_SUITE_P(Corpus, Replay, testing::ValuesIn(fuzz::targets().begin(), fuzz::targets().end()),
                         [](const auto& given) { return std::string(given.param.name); });
