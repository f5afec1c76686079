#include "OpenWorkbench.h"
#include "workbench/GlCensus.h"
#include "workbench/LiveEdits.h"

#include <gtest/gtest.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqSliceWidget.h>

#include <QDockWidget>
#include <QElapsedTimer>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QUndoStack>

#include <malloc.h>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <random>
#include <utility>
#include <vector>

// What a long day of editing leaves behind: live edits in the real window, each drawn in all four views.

namespace {

/** Each ends with everything as it was in the beginning, and is a point of the record. */
constexpr int BLOCKS = 20;
/** What the toolkit and OpenGL keep once it was needed (glyphs, compiled shaders) is there after these. */
constexpr int FIRST_BLOCKS = 5;

/** What the memory in use goes up and down by, whatever happens. */
constexpr double NOISE = 128.0 * 1024.0;
/** The same where the window is resized: pictures of an earlier size among them. */
constexpr double HANDLING_NOISE = 1024.0 * 1024.0;

/** The number that the environment asks for, at least one for each block, shared out among them. */
int countForBlock(const char* variable, int usual) {
    const char* wanted = std::getenv(variable);
    return std::max((wanted ? std::atoi(wanted) : usual) / BLOCKS, 1);
}

/** Memory that is in use, whatever the allocator keeps beside it. The resident set says less: the allocator holds on to
 * what was given back. Next to nothing under sanitizers, whose allocators are their own; they look for leaks
 * themselves. */
std::size_t bytesInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/** Bytes that were in use after so many edits. */
using Record = std::vector<std::pair<double, double>>;

/** How the bytes grow from the record's first to its last point, by the line of least squares. */
double growth(const Record& points) {
    double x = 0.0;
    double y = 0.0;
    for (const auto& [edits, bytes] : points) {
        x += edits / double(points.size());
        y += bytes / double(points.size());
    }
    double product = 0.0;
    double square = 0.0;
    for (const auto& [edits, bytes] : points) {
        product += (edits - x) * (bytes - y);
        square += (edits - x) * (edits - x);
    }
    return product / square * (points.back().first - points.front().first);
}

class Soak : public OpenWorkbench {
protected:
    void SetUp() override {
        window->resize(700, 500);
        ASSERT_TRUE(open("builtin:casting@24"));
        const std::vector<LyqCameraWidget*>& views = window->views().views();
        ASSERT_EQ(views.size(), mDrawn.size());
        for (std::size_t i = 0; i < mDrawn.size(); ++i) {
            connect(views[i], &LyqCameraWidget::frameDrawn, this, [this, i] { frameDrawn(i); });
        }
    }

    /** Lets everything happen that an edit brings about. False if a view was not drawn within a while. */
    bool redraw() {
        mDrawn.fill(false);
        QElapsedTimer time;
        time.start();
        while (std::find(mDrawn.begin(), mDrawn.end(), false) != mDrawn.end()) {
            if (time.elapsed() > 20000) {
                return false;
            }
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
        return true;
    }

    /** An edit as users make it, now and then with another slice or a step back and forth. */
    void edit(LiveEdits& content) {
        {
            const LyqApplication::UserActionScope action("soak");
            content.edit(mRandom);
        }
        const unsigned besides = mRandom() % 16;
        if (besides == 0) {
            window->views().sliceView(int(mRandom() % 3))->setSliceIndex(int(mRandom() % 24));
        }
        ASSERT_TRUE(redraw());
        if (besides == 1) {
            // What the steps of a gesture change need not differ from what was before it: no view has to be drawn.
            EXPECT_TRUE(LyqApplication::instance().undo());
            QCoreApplication::processEvents();
            EXPECT_TRUE(LyqApplication::instance().redo());
            QCoreApplication::processEvents();
        }
    }

    void editBlock(LiveEdits& content, int count) {
        for (int i = 0; i < count; ++i) {
            if (i % 10 == 0) {
                LyqApplication::instance().gestureBegin();
            }
            ASSERT_NO_FATAL_FAILURE(edit(content)) << "edit " << i;
        }
        LyqApplication::instance().gestureEnd();
    }

    /** Takes everything back. */
    void restore() {
        while (LyqApplication::instance().undoStack().canUndo()) {
            ASSERT_TRUE(LyqApplication::instance().undo());
        }
        LyqApplication::instance().undoStack().clear();
        for (int axis = 0; axis < 3; ++axis) {
            window->views().sliceView(axis)->setSliceIndex(axis);
            window->views().sliceView(axis)->setSliceIndex(12);
        }
        ASSERT_TRUE(redraw());
        settle();
    }

    /** Something that users do to the window, at random. */
    void handle() {
        const QList<QDockWidget*> docks = window->findChildren<QDockWidget*>();
        QDockWidget* dock = docks[int(mRandom() % unsigned(docks.size()))];
        LyqCameraWidget* view = window->views().views()[mRandom() % 4];
        switch (mRandom() % 5) {
            case 0:
                dock->setFloating(!dock->isFloating());
                break;
            case 1:
                dock->setVisible(!dock->isVisible());
                break;
            case 2:
                window->resize(700 + int(mRandom() % 400), 500 + int(mRandom() % 300));
                break;
            case 3:
                window->views().setMaximizedView(window->views().maximizedView() ? nullptr : view);
                break;
            default:
                window->views().sliceView(int(mRandom() % 3))->setSliceIndex(int(mRandom() % 24));
        }
        QTest::qWait(1);
        window->views().finishFrames();
    }

    /** The objects of each view's context. */
    std::array<GlCensus, 4> census() {
        mCounting = true;
        for (LyqCameraWidget* view : window->views().views()) {
            EXPECT_FALSE(view->getImage().isNull());
        }
        mCounting = false;
        return mCensus;
    }

    /** The middle of several looks, because OpenGL lets go of a frame's memory a while after it. */
    std::size_t usualBytesInUse() {
        std::array<std::size_t, 9> looks{};
        for (std::size_t& bytes : looks) {
            window->views().resetViews();
            EXPECT_TRUE(redraw());
            bytes = bytesInUse();
        }
        std::nth_element(looks.begin(), looks.begin() + 4, looks.end());
        return looks[4];
    }

    int errors() const { return mErrors; }
    int frames() const { return mFrames; }

private:
    void frameDrawn(std::size_t view) {
        mDrawn[view] = true;
        ++mFrames;
        if (QOpenGLContext::currentContext()->functions()->glGetError() != GL_NO_ERROR) {
            ++mErrors;
        }
        if (mCounting) {
            mCensus[view] = GlCensus::take();
        }
    }

    std::mt19937 mRandom{11};
    std::array<bool, 4> mDrawn{};
    std::array<GlCensus, 4> mCensus;
    bool mCounting = false;
    int mFrames = 0;
    int mErrors = 0;
};

}  // namespace

TEST_F(Soak, live_edits_in_four_views_leave_no_memory_and_no_opengl_objects_behind) {
    const int edits = countForBlock("LYS_SOAK_EDITS", 300);
    LiveEdits content;
    Record record;
    std::array<GlCensus, 4> first;
    for (int block = 1; block <= BLOCKS; ++block) {
        ASSERT_NO_FATAL_FAILURE(editBlock(content, edits));
        ASSERT_NO_FATAL_FAILURE(restore());
        const std::array<GlCensus, 4> now = census();
        const std::size_t bytes = usualBytesInUse();
        std::cout << block * edits << " edits, " << frames() << " frames: " << bytes << " bytes, " << now[0].text()
                  << std::endl;
        EXPECT_GT(now[0].counts[0], 0);
        if (block >= FIRST_BLOCKS) {
            first = block == FIRST_BLOCKS ? now : first;
            EXPECT_EQ(now, first) << now[0].text();
            record.emplace_back(block * edits, double(bytes));
        }
    }
    EXPECT_GE(frames(), 4 * BLOCKS * edits);
    EXPECT_EQ(errors(), 0);
    EXPECT_LT(growth(record), NOISE);
}

TEST_F(Soak, much_handling_of_the_window_leaves_its_memory_as_it_was) {
    const int handlings = countForBlock("LYS_SOAK_HANDLINGS", 200);
    const QByteArray state = window->saveState();
    const QSize size = window->size();
    std::array<GlCensus, 4> first;
    std::vector<std::size_t> record;
    for (int block = 1; block <= BLOCKS; ++block) {
        for (int i = 0; i < handlings; ++i) {
            handle();
        }
        window->views().setMaximizedView(nullptr);
        window->resize(size);
        ASSERT_TRUE(window->restoreState(state));
        settle();
        ASSERT_NO_FATAL_FAILURE(restore());
        const std::array<GlCensus, 4> now = census();
        first = block == FIRST_BLOCKS ? now : first;
        record.push_back(usualBytesInUse());
        std::cout << block * handlings << " handlings: " << record.back() << " bytes, " << now[0].text() << std::endl;
        if (block >= FIRST_BLOCKS) {
            EXPECT_EQ(now, first) << now[0].text();
        }
    }
    // Some blocks end with pictures of an earlier size that the toolkit still keeps, 1 MB together.
    const auto middle = record.begin() + (FIRST_BLOCKS + BLOCKS) / 2;
    const std::size_t before = *std::min_element(record.begin() + FIRST_BLOCKS - 1, middle);
    EXPECT_LT(double(*std::min_element(middle, record.end())), double(before) + HANDLING_NOISE);
}
