// Presets while system calls fail, the program is killed, or others change the files: the calls are changed in the
// registers of the processor.

#if defined(__x86_64__) && defined(__linux__)

#include <lys_core/PresetTestTools.h>

#include <ToolkitApplication.h>
#include <lyr_core/TemporaryFolder.h>
#include <lyr_core/TracedProcess.h>
#include <lys_core/LyqPresetManageDialog.h>
#include <lys_core/LyqPresetSaveDialog.h>
#include <lys_core/LyqPresetStore.h>

#include <QApplication>
#include <QMessageBox>
#include <QTimer>

#include <gtest/gtest.h>

#include <fcntl.h>

using namespace preset_test;
using Action = TracedProcess::Action;
using Outcome = TracedProcess::Outcome;
using Stop = TracedProcess::Stop;

namespace {

constexpr int KILL = 0;
const TracedProcess::Decision UNTOUCHED = [](const Stop&) { return Action(); };

/** Presets "a" (1) and "b" (2). */
class PresetStoreFault : public testing::Test, ToolkitApplication {
protected:
    PresetStoreFault() {
        Thing::metaClass();
        EXPECT_TRUE(save("a", 1) && save("b", 2)) << message.utf8();
    }
    void SetUp() override {
        if (TracedProcess::run([] { return TracedProcess::Succeeded; }, UNTOUCHED) == TracedProcess::NotTraced) {
            GTEST_SKIP() << "processes may not be traced here";
        }
    }
    bool save(const LyrString& name, float value) {
        HeldThing thing(value);
        return store.save(*thing, name, message);
    }
    float valueOf(const LyrString& name) const {
        LyrObjectFile::Report report;
        const LyqPresetStore next(folder.path(), false, "PresetTestThing");
        const LyrObjectPtr object = next.load(name, report, Lyr::TransientScope);
        return object ? static_cast<Thing*>(object.get())->value.stored() : -1.0f;
    }
    std::string pathOf(const LyrString& name) const {
        for (const LyqPresetStore::Entry& entry : store.list()) {
            if (entry.name == name) {
                return entry.path;
            }
        }
        return {};
    }
    /// Runs an operation that says how it went and gives a message, which must hold `part`.
    Outcome run(const std::function<bool()>& operation, const char* part, const TracedProcess::Decision& decide) {
        return TracedProcess::run(
            [&] {
                const bool done = operation();
                const bool isTold = std::string(message.utf8()).find(part) != std::string::npos;
                return done     ? TracedProcess::Succeeded
                       : isTold ? TracedProcess::FailedWithMessage
                                : TracedProcess::FailedSilently;
            },
            decide);
    }
    /// The calls of one kind that an operation makes, which does not change what is there (run in a copy).
    int countOf(long call, const std::function<bool()>& operation) {
        int count = 0;
        run(operation, "", [&](const Stop& stop) {
            count += stop.isEntry && stop.call == call ? 1 : 0;
            return Action();
        });
        return count;
    }
    /// Fails the last of the calls of a kind.
    TracedProcess::Decision failingLast(long call, int count, int error) {
        return [=, met = std::make_shared<int>(0)](const Stop& stop) {
            Action action;
            const bool isIt = stop.isEntry && stop.call == call && ++*met == count;
            action.error = isIt ? error : 0;
            return action;
        };
    }

    TemporaryFolder folder;
    LyqPresetStore store{folder.path(), true, "PresetTestThing"};
    LyrString message;
};

/// What a disk refuses that is mounted for reading only, or a folder that belongs to somebody else.
Action refusingChanges(const Stop& stop, int error) {
    const unsigned long flags = stop.arguments[2];
    const bool opensForWriting =
        stop.call == SYS_openat && ((flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC)) != 0);
    const bool changesNames = stop.call == SYS_renameat || stop.call == SYS_renameat2 || stop.call == SYS_rename ||
                              stop.call == SYS_unlink || stop.call == SYS_unlinkat || stop.call == SYS_linkat ||
                              stop.call == SYS_mkdir || stop.call == SYS_mkdirat;
    Action action;
    action.error = stop.isEntry && (opensForWriting || changesNames) ? error : 0;
    return action;
}

/// Calls that only the saving of a file makes; an event loop writes eight bytes at a time.
bool isWritingFiles(const Stop& stop) {
    return stop.call == SYS_fsync || stop.call == SYS_renameat || stop.call == SYS_linkat || stop.call == SYS_fchmod ||
           stop.call == SYS_pread64 || (stop.call == SYS_write && stop.arguments[0] > 2 && stop.arguments[2] > 8);
}

}  // namespace

TEST_F(PresetStoreFault, a_folder_that_cannot_be_written_gives_a_message_and_still_lists) {
    const std::pair<int, const char*> errors[] = {{EROFS, "ead-only"}, {EACCES, "ermission"}};
    for (const auto& [error, text] : errors) {
        const auto refuse = [error = error](const Stop& stop) { return refusingChanges(stop, error); };
        EXPECT_EQ(run([&] { return save("a", 5); }, text, refuse), TracedProcess::FailedWithMessage) << error;
        EXPECT_EQ(run([&] { return save("c", 5); }, text, refuse), TracedProcess::FailedWithMessage) << error;
        EXPECT_EQ(run([&] { return store.rename("a", "c", message); }, text, refuse), TracedProcess::FailedWithMessage);
        EXPECT_EQ(run([&] { return store.remove("a", message); }, text, refuse), TracedProcess::FailedWithMessage);
        EXPECT_EQ(
            run([&] { return LyqPresetStore(folder.path(), true, "PresetTestThing").list().size() == 2; }, "", refuse),
            TracedProcess::Succeeded);
        EXPECT_EQ(folder.names().size(), 2u);
        EXPECT_EQ(valueOf("a"), 1);
        EXPECT_EQ(valueOf("b"), 2);
    }
}

TEST_F(PresetStoreFault, a_folder_that_cannot_be_flushed_after_a_preset_was_deleted_is_told) {
    const auto remove = [&] { return store.remove("a", message); };
    const auto outcome = run(remove, "flushed", failingLast(SYS_fsync, 1, EIO));
    EXPECT_EQ(outcome, TracedProcess::FailedWithMessage);
    EXPECT_EQ(valueOf("b"), 2);
}

TEST_F(PresetStoreFault, a_folder_that_cannot_be_flushed_after_a_preset_was_renamed_is_told) {
    const int count = countOf(SYS_fsync, [&] { return store.rename("a", "c", message); });
    ASSERT_EQ(count, 3) << "the new file, the folder, and the folder without the old name";
    ASSERT_EQ(valueOf("c"), 1);
    const auto rename = [&] { return store.rename("c", "a", message); };
    EXPECT_EQ(run(rename, "flushed", failingLast(SYS_fsync, count, EIO)), TracedProcess::FailedWithMessage);
    EXPECT_EQ(valueOf("a"), 1) << "it is there all the same";
}

TEST_F(PresetStoreFault, an_error_or_the_end_at_any_call_of_a_rename_leaves_the_preset_under_one_name_or_both) {
    for (const int error : {EIO, ENOSPC, KILL}) {
        bool wasTouched = true;
        for (int call = 0; wasTouched; ++call) {
            ASSERT_LT(call, 300);
            wasTouched = false;
            const auto outcome = run([&] { return store.rename("a", "c", message); }, "",
                                     [&](const Stop& stop) {
                                         Action action;
                                         if (stop.index == call && stop.isEntry) {
                                             wasTouched = true;
                                             action.error = error;
                                             action.kill = error == KILL;
                                         }
                                         return action;
                                     });
            const bool isOld = valueOf("a") == 1;
            const bool isNew = valueOf("c") == 1;
            EXPECT_TRUE(isOld || isNew) << call << " error " << error;
            EXPECT_TRUE(outcome != TracedProcess::Succeeded || (isNew && !isOld)) << call << " error " << error;
            EXPECT_NE(outcome, TracedProcess::FailedSilently);
            EXPECT_EQ(valueOf("b"), 2);
            // The next start.
            LyqPresetStore next(folder.path(), true, "PresetTestThing");
            EXPECT_EQ(folder.names().size(), 1u + isOld + isNew) << "debris after call " << call << " error " << error;
            if (isNew) {
                ASSERT_TRUE(isOld ? next.remove("c", message) : next.rename("c", "a", message)) << message.utf8();
            }
        }
    }
}

TEST_F(PresetStoreFault, a_preset_that_is_replaced_cut_off_or_removed_while_it_is_read_is_loaded_whole_or_refused) {
    const std::string path = pathOf("a");
    const std::string file = path.substr(path.rfind('/') + 1);
    const std::string oldText = folder.read(file);
    std::string newText = oldText;
    newText.replace(newText.find("\"900000011\": 1"), 14, "\"900000011\": 9");
    const std::function<void()> changes[] = {
        [&] {
            folder.write(".new", newText);
            std::filesystem::rename(folder.file(".new"), path);
        },
        [&] { std::filesystem::resize_file(path, oldText.size() / 2); },
        [&] { std::filesystem::remove(path); },
        [&] { folder.write(file, newText); },
    };
    for (const auto& change : changes) {
        int refused = 0;
        bool isDone = true;
        for (int call = 0; isDone; ++call) {
            ASSERT_LT(call, 100);
            folder.write(file, oldText);
            isDone = false;
            const auto outcome = TracedProcess::run(
                [&] {
                    LyrObjectFile::Report report;
                    const LyqPresetStore reader(folder.path(), false, "PresetTestThing");
                    const LyrObjectPtr object = reader.load("a", report, Lyr::TransientScope);
                    const float value = object ? static_cast<Thing*>(object.get())->value.stored() : -1;
                    return value == 1 || value == 9               ? TracedProcess::Succeeded
                           : !object && !report.message.isEmpty() ? TracedProcess::FailedWithMessage
                                                                  : TracedProcess::FailedSilently;
                },
                [&](const Stop& stop) {
                    if (stop.index == call && stop.isEntry) {
                        isDone = true;
                        change();
                    }
                    return Action();
                });
            EXPECT_TRUE(outcome == TracedProcess::Succeeded || outcome == TracedProcess::FailedWithMessage)
                << call << ": " << outcome;
            refused += outcome == TracedProcess::FailedWithMessage ? 1 : 0;
        }
        EXPECT_TRUE(refused > 0 || &change == &changes[0] || &change == &changes[3]);
    }
}

TEST_F(PresetStoreFault, an_error_of_any_call_of_a_save_is_shown_in_the_dialog_which_stays_open) {
    auto* const handler = new ThingHandler(folder.path());
    const LyrObjectPtr held(handler);
    HeldThing thing(7);
    handler->setApplicationObject(thing.thing);
    LyqPresetSaveDialog dialog(handler);
    dialog.setPresetName(QStringLiteral("c"));
    dialog.show();
    for (const int error : {EIO, ENOSPC, EPERM, EXDEV}) {
        bool wasTouched = true;
        int call = 0;
        for (; wasTouched; ++call) {
            ASSERT_LT(call, 300);
            handler->setCurrentPresetModified(true);
            wasTouched = false;
            const auto outcome = TracedProcess::run(
                [&] {
                    dialog.accept();
                    const bool isOpen = dialog.isVisible() && dialog.result() != QDialog::Accepted;
                    const bool isTold = isOpen && !dialog.message().isEmpty() && handler->isCurrentPresetModified();
                    return isTold   ? TracedProcess::FailedWithMessage
                           : isOpen ? TracedProcess::FailedSilently
                                    : TracedProcess::Succeeded;
                },
                [&](const Stop& stop) {
                    Action action;
                    if (stop.index == call && stop.isEntry) {
                        wasTouched = true;
                        action.error = error;
                    }
                    return action;
                });
            EXPECT_TRUE(outcome == TracedProcess::Succeeded || outcome == TracedProcess::FailedWithMessage)
                << call << " error " << error << ": " << outcome;
            EXPECT_EQ(valueOf("c"), outcome == TracedProcess::Succeeded ? 7 : -1) << call << " error " << error;
            EXPECT_EQ(valueOf("a"), 1);
            EXPECT_EQ(valueOf("b"), 2);
            if (outcome == TracedProcess::Succeeded) {
                EXPECT_TRUE(store.remove("c", message)) << message.utf8();
            }
            EXPECT_EQ(folder.names().size(), 2u) << call << " error " << error;
        }
        EXPECT_GT(call, 20);
    }
}

TEST_F(PresetStoreFault, an_error_while_the_dialog_replaces_a_preset_is_shown_and_leaves_the_old_one) {
    auto* const handler = new ThingHandler(folder.path());
    const LyrObjectPtr held(handler);
    HeldThing thing(7);
    handler->setApplicationObject(thing.thing);
    LyqPresetSaveDialog dialog(handler);
    dialog.setPresetName(QStringLiteral("a"));
    dialog.show();
    const auto acceptAndReplace = [&] {
        bool wasAsked = false;
        QTimer::singleShot(0, qApp, [&] {
            auto* const question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            wasAsked = question && question->buttons().size() == 2;
            for (QAbstractButton* button : question ? question->buttons() : QList<QAbstractButton*>()) {
                if (question->buttonRole(button) == QMessageBox::AcceptRole) {
                    button->click();
                }
            }
        });
        dialog.accept();
        const bool isOpen = dialog.isVisible() && dialog.result() != QDialog::Accepted;
        const bool isTold = isOpen && !dialog.message().isEmpty() && handler->isCurrentPresetModified();
        return !wasAsked ? TracedProcess::Broken
               : isTold  ? TracedProcess::FailedWithMessage
               : isOpen  ? TracedProcess::FailedSilently
                         : TracedProcess::Succeeded;
    };
    for (const int error : {EIO, ENOSPC, EPERM, EXDEV}) {
        bool wasTouched = true;
        int call = 0;
        for (; wasTouched; ++call) {
            handler->setCurrentPresetModified(true);
            wasTouched = false;
            long touched = -1;
            int met = 0;
            const auto outcome = TracedProcess::run(acceptAndReplace, [&](const Stop& stop) {
                Action action;
                if (stop.isEntry && isWritingFiles(stop) && met++ == call) {
                    wasTouched = true;
                    touched = stop.call;
                    action.error = error;
                }
                return action;
            });
            // Without a second name for the old file there is no way back, but all is well.
            const bool isDone = !wasTouched || (touched == SYS_linkat && error == EPERM);
            EXPECT_EQ(outcome, isDone ? TracedProcess::Succeeded : TracedProcess::FailedWithMessage)
                << call << " error " << error;
            EXPECT_EQ(valueOf("a"), isDone ? 7 : 1) << call << " error " << error;
            EXPECT_EQ(folder.names().size(), 2u) << call << " error " << error;
            ASSERT_TRUE(save("a", 1)) << message.utf8();
        }
        EXPECT_GT(call, 6);
    }
}

TEST_F(PresetStoreFault, a_preset_that_was_deleted_though_the_folder_could_not_be_flushed_is_gone_from_the_manager) {
    auto* const handler = new ThingHandler(folder.path());
    const LyrObjectPtr held(handler);
    LyqPresetManageDialog dialog(handler);
    ASSERT_TRUE(dialog.select("a", Lyr::UserPreset));
    const auto outcome = TracedProcess::run(
        [&] {
            const bool done = dialog.removeSelected();
            const bool isTold = !done && !dialog.message().isEmpty();
            return isTold && !dialog.select("a", Lyr::UserPreset) ? TracedProcess::FailedWithMessage
                                                                  : TracedProcess::FailedSilently;
        },
        failingLast(SYS_fsync, 1, EIO));
    EXPECT_EQ(outcome, TracedProcess::FailedWithMessage);
}

#endif
