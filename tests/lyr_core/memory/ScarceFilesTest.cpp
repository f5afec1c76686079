#include "lyr_core/FileTestObjects.h"
#include "lyr_core/TemporaryFolder.h"
#include "scarce/ScarceMemory.h"

#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>

#include <gtest/gtest.h>

#include <algorithm>

// Object files with each allocation failing in turn, once and for good: nothing is thrown, a failure has a message, and
// object and file are as they were before.

using namespace file_test;
using Failing = ScarceMemory::Failing;
using Report = LyrObjectFile::Report;

namespace {

class Silence : public LyrError::Listener {
public:
    bool errorEmitted(const LyrError::Message&) override { return true; }
};

/** A sample with something in everything. */
LyrObjectPtr filledSample() {
    auto* sample = new Sample;
    LyrObjectPtr held(sample);
    const float ends[] = {-0.5f, 0.1f, 7.0f};
    sample->positions.initArray(0, 2, ends);
    sample->text.setValue("a text that is too long to be kept inside a string itself");
    sample->setNameTemplate("a name that is too long to be kept inside a string itself");
    const LyrObjectPtr child(new Leaf);
    sample->child.setValue(LyrObjectLink(child.get(), nullptr, -1));
    return held;
}

long long objectCount() {
    return LyrClassManager::getObjectCount(LyrClassManager::SearchPattern("LyrObject"));
}

/** Runs `work` with each of its allocations failing; `check` judges every run that was in vain, `undo` judges any other
 * and prepares for the next one. Returns how many runs there were. */
template <class Work, class Check, class Undo = void (*)()>
int withScarceMemory(
    Work work, Check check, Undo undo = [] {}) {
    const Silence silence;
    int runs = 0;
    for (const Failing how : {Failing::Once, Failing::ForGood}) {
        bool failed = true;
        for (int n = 0; failed && n < 20000; ++n) {
            bool done = false;
            {
                const ScarceMemory scarce(n, how);
                EXPECT_NO_THROW(done = work()) << "allocation " << n;
                failed = scarce.hasFailed();
            }
            EXPECT_TRUE(done || failed) << "allocation " << n;
            SCOPED_TRACE(n);
            if (done) {
                undo();
            } else {
                check();
            }
            ++runs;
        }
        EXPECT_FALSE(failed) << "no end";
    }
    return runs;
}

/** Reads values into an object that has its defaults: it then has all of `text` or none. */
template <class Read>
void expectAllOrNothing(const std::string& text, const Read& read) {
    const LyrObjectPtr target(new Sample);
    Report report;
    const int runs = withScarceMemory([&] { return read(*target, report); },
                                      [&] {
                                          EXPECT_FALSE(report.message.isEmpty());
                                          EXPECT_EQ(textOf(*target), DEFAULT_TEXT);
                                      },
                                      [&] {
                                          EXPECT_EQ(textOf(*target), text);
                                          EXPECT_TRUE(LyrObjectFile::readInto(DEFAULT_TEXT, *target, report));
                                      });
    EXPECT_GT(runs, 200);
}

}  // namespace

TEST(ScarceFiles, writes_a_text_or_says_why_not) {
    const LyrObjectPtr sample = filledSample();
    const std::string expected = textOf(*sample);
    std::string text;
    LyrString message;
    const int runs = withScarceMemory(
        [&] {
            text = "before";
            message = LyrString();
            const bool done = LyrObjectFile::write(*sample, text, &message);
            EXPECT_TRUE(!done || text == expected);
            return done;
        },
        [&] {
            EXPECT_EQ(text, "before");
            EXPECT_FALSE(message.isEmpty());
        });
    EXPECT_GT(runs, 100);
}

TEST(ScarceFiles, reads_a_whole_object_or_none) {
    const std::string text = textOf(*filledSample());
    const long long before = objectCount();
    LyrObjectPtr out;
    Report report;
    const int runs = withScarceMemory(
        [&] {
            out = LyrObjectPtr();
            return LyrObjectFile::read(text, out, report);
        },
        [&] {
            EXPECT_FALSE(out.get());
            EXPECT_FALSE(report.ok);
            EXPECT_FALSE(report.message.isEmpty());
            EXPECT_EQ(objectCount(), before);
        },
        [&] { EXPECT_EQ(textOf(*out), text); });
    EXPECT_GT(runs, 200);
}

TEST(ScarceFiles, gives_an_object_all_values_of_a_file_or_none) {
    const std::string text = textOf(*filledSample());
    expectAllOrNothing(
        text, [&](LyrObject& target, Report& report) { return LyrObjectFile::readInto(text, target, report); });
}

TEST(ScarceFiles, replaces_a_file_whole_or_leaves_it) {
    const LyrObjectPtr sample = filledSample();
    const std::string expected = textOf(*sample);
    const TemporaryFolder folder;
    const std::string path = folder.file("a file with a name that is too long for a short string.json");
    const std::string name = path.substr(folder.path().size() + 1);
    folder.write(name, DEFAULT_TEXT);
    Report report;
    const int runs = withScarceMemory([&] { return LyrObjectFile::save(*sample, path, report); },
                                      [&] {
                                          EXPECT_FALSE(report.message.isEmpty());
                                          EXPECT_EQ(folder.read(name), DEFAULT_TEXT);
                                          EXPECT_EQ(folder.names().size(), 1u);
                                      },
                                      [&] {
                                          EXPECT_EQ(folder.read(name), expected);
                                          EXPECT_EQ(folder.names().size(), 1u);
                                          folder.write(name, DEFAULT_TEXT);
                                      });
    EXPECT_GT(runs, 100);
}

TEST(ScarceFiles, loads_a_file_or_says_why_not) {
    const TemporaryFolder folder;
    folder.write("sample.json", DEFAULT_TEXT);
    const std::string path = folder.file("sample.json");
    LyrObjectPtr out;
    Report report;
    const int runs = withScarceMemory(
        [&] {
            out = LyrObjectPtr();
            return LyrObjectFile::load(path, out, report);
        },
        [&] {
            EXPECT_FALSE(out.get());
            EXPECT_FALSE(report.message.isEmpty());
        },
        [&] { EXPECT_EQ(textOf(*out), DEFAULT_TEXT); });
    EXPECT_GT(runs, 100);
    const std::string text = textOf(*filledSample());
    folder.write("sample.json", text);
    expectAllOrNothing(text,
                       [&](LyrObject& target, Report& into) { return LyrObjectFile::loadInto(path, target, into); });
}
