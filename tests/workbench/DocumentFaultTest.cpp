// Saving a document while each system call in turn fails, or kills the program: the call is changed in the registers of
// the processor.

#if defined(__x86_64__) && defined(__linux__)

#include "OpenWorkbench.h"

#include <gtest/gtest.h>
#include <lyr_core/LyrObjectFile.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/TemporaryFolder.h>
#include <lyr_core/TracedProcess.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqSession.h>
#include <workbench/ContentFiles.h>
#include <workbench/DocumentChanges.h>

#include <QMenu>
#include <QWidget>

namespace {

constexpr int KILL = 0;

/** The files of a document, asked for by a window that is not shown: what happens to it in a forked process does not
 * reach the display. */
class DocumentFault : public OpenWorkbench {
protected:
    void SetUp() override {
        ASSERT_TRUE(open("builtin:casting@32"));
        content = LyqSession::instance().activeLayer()->contents().at(0);
        files = std::make_unique<workbench::ContentFiles>(hidden, menu);
        QString message;
        ASSERT_TRUE(files->save(content, path(), message)) << message.toStdString();
        oldText = folder.read("table.json");
        const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>> positions(content.object,
                                                                           Lyrenum("PositionList", true));
        const float list[] = {-3, 5};
        ASSERT_TRUE(positions->initArray(0, 1, list));
        ASSERT_TRUE(LyrObjectFile::write(*content.object, newText));
        ASSERT_TRUE(files->changes().isModified(content.object));
        ASSERT_NE(newText, oldText);
    }
    QString path() const { return QString::fromStdString(folder.file("table.json")); }

    /** Saves with one call failing or killed. True if there was such a call. */
    bool saveWith(int call, int error) {
        folder.write("table.json", oldText);
        bool wasTouched = false;
        outcome = TracedProcess::run(
            [&] {
                QString message;
                const bool done = files->save(content, path(), message);
                const bool isModified = files->changes().isModified(content.object) && hidden.isWindowModified();
                return done && !isModified                         ? TracedProcess::Succeeded
                       : !done && isModified && !message.isEmpty() ? TracedProcess::FailedWithMessage
                                                                   : TracedProcess::FailedSilently;
            },
            [&](const TracedProcess::Stop& stop) {
                TracedProcess::Action action;
                if (stop.index == call && stop.isEntry) {
                    wasTouched = true;
                    action.error = error;
                    action.kill = error == KILL;
                }
                return action;
            });
        return wasTouched;
    }

    TemporaryFolder folder;
    QWidget hidden;
    QMenu menu;
    std::unique_ptr<workbench::ContentFiles> files;
    LyqLayer::Content content{};
    std::string oldText;
    std::string newText;
    TracedProcess::Outcome outcome = TracedProcess::Broken;
};

}  // namespace

TEST_F(DocumentFault, an_error_of_any_call_is_told_keeps_the_file_and_leaves_the_document_modified) {
    for (const int error : {EIO, ENOSPC, EPERM, EXDEV}) {
        bool wasTouched = true;
        for (int call = 0; wasTouched; ++call) {
            ASSERT_LT(call, 300);
            wasTouched = saveWith(call, error);
            if (outcome == TracedProcess::NotTraced) {
                GTEST_SKIP() << "processes may not be traced here";
            }
            const bool isDone = outcome == TracedProcess::Succeeded;
            EXPECT_TRUE(isDone || outcome == TracedProcess::FailedWithMessage) << call << " error " << error;
            EXPECT_EQ(folder.read("table.json"), isDone ? newText : oldText) << call << " error " << error;
            EXPECT_EQ(folder.names(), std::set<std::string>{"table.json"}) << call << " error " << error;
        }
        EXPECT_EQ(outcome, TracedProcess::Succeeded);
    }
}

TEST_F(DocumentFault, killed_at_any_call_it_leaves_a_whole_file_and_the_next_save_no_debris) {
    bool wasTouched = true;
    int debris = 0;
    for (int call = 0; wasTouched; ++call) {
        ASSERT_LT(call, 300);
        wasTouched = saveWith(call, KILL);
        if (outcome == TracedProcess::NotTraced) {
            GTEST_SKIP() << "processes may not be traced here";
        }
        const std::string present = folder.read("table.json");
        EXPECT_TRUE(present == oldText || present == newText) << call;
        debris += static_cast<int>(folder.names().size()) - 1;
        QString message;
        EXPECT_TRUE(files->save(content, path(), message)) << message.toStdString();
        EXPECT_EQ(folder.names(), std::set<std::string>{"table.json"}) << "debris after call " << call;
    }
    EXPECT_GT(debris, 5);
}

#endif
