#include "lyr_volume/SampleFiles.h"

#include <Sanitizers.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>
#include <zlib.h>

#include <filesystem>
#include <fstream>

namespace samples {
namespace {

Bytes deflated(const Bytes& plain, int windowBits) {
    z_stream stream{};
    EXPECT_EQ(deflateInit2(&stream, 6, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY), Z_OK);
    std::vector<unsigned char> packed(plain.size() + plain.size() / 100 + 100);
    stream.next_in = const_cast<unsigned char*>(plain.data());
    stream.avail_in = static_cast<uInt>(plain.size());
    stream.next_out = packed.data();
    stream.avail_out = static_cast<uInt>(packed.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return Bytes(std::string_view(reinterpret_cast<const char*>(packed.data()), packed.size()));
}

}  // namespace

Bytes gzip(const Bytes& plain) {
    return deflated(plain, 15 + 16);
}
Bytes zlib(const Bytes& plain) {
    return deflated(plain, 15);
}

Folder::Folder() {
    path_ = ::testing::TempDir() + "lyr_volume_XXXXXX";
    EXPECT_NE(mkdtemp(path_.data()), nullptr);
}

Folder::~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string Folder::path(const std::string& name) const {
    return name.empty() ? path_ : path_ + "/" + name;
}

std::string Folder::write(const std::string& name, const Bytes& bytes) const {
    const std::filesystem::path target = path(name);
    std::filesystem::create_directories(target.parent_path());
    std::ofstream file(target, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    EXPECT_TRUE(file.good());
    return target.string();
}

std::string Outcome::warnings() const {
    std::string all;
    for (const std::string& warning : report.warnings) {
        all += warning + "\n";
    }
    return all;
}

Outcome readVolume(const std::string& path) {
    Outcome outcome;
    outcome.read = LyrVolumeReader::read(path, outcome.volume, outcome.report);
    return outcome;
}

void expectRamp(const Outcome& outcome, const LyrVolume::Size& size, double first, double step) {
    ASSERT_TRUE(outcome.read) << outcome.report.error;
    ASSERT_TRUE(outcome.volume);
    EXPECT_TRUE(outcome.report.error.empty());
    ASSERT_EQ(outcome.volume->size(), size);
    const auto values = outcome.volume->samples();
    for (std::size_t i = 0; i < values.size(); ++i) {
        ASSERT_EQ(values[i], static_cast<float>(first + step * static_cast<double>(i))) << "at sample " << i;
    }
}

void expectRefused(const Outcome& outcome, std::initializer_list<const char*> words) {
    EXPECT_FALSE(outcome.read);
    EXPECT_FALSE(outcome.volume);
    EXPECT_FALSE(outcome.report.error.empty());
    for (const char* word : words) {
        EXPECT_NE(outcome.report.error.find(word), std::string::npos)
            << "\"" << word << "\" is not in: " << outcome.report.error;
    }
}

void expectEveryCutRefused(const Folder& folder, const std::string& name, const Bytes& bytes, std::size_t step) {
    const std::string path = folder.write(name, bytes);
    for (std::size_t length = bytes.size() - 1; length < bytes.size(); length -= step) {
        std::filesystem::resize_file(path, length);
        const Outcome outcome = readVolume(path);
        ASSERT_FALSE(outcome.read) << name << " cut to " << length << " of " << bytes.size() << " bytes was read";
        ASSERT_FALSE(outcome.volume);
        ASSERT_NE(outcome.report.error.find(name), std::string::npos) << outcome.report.error;
    }
}

std::uint64_t peakMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::uint64_t>(usage.ru_maxrss) * 1024U;
}

void expectLessMemoryTaken(std::uint64_t before, std::uint64_t mebibytes) {
    if (!SANITIZED) {
        EXPECT_LT(peakMemory() - before, mebibytes << 20U);
    }
}

}  // namespace samples
