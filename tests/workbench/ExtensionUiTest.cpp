#include "OpenWorkbench.h"

#include <lyr_core/LyrMetaClass.h>
#include <lys_core/LyqActionExtension.h>
#include <lys_core/LyqAnalysisExtension.h>
#include <lys_core/LyqDockExtension.h>
#include <lys_core/LyqExtensionRegistry.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqSession.h>
#include <workbench/AnalysisRunner.h>

#include <QAction>
#include <QDockWidget>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>

#include <atomic>

namespace {

constexpr const char* MODULE = "test_extensions";

class Dock : public LyqDockExtension {
public:
    Dock() : LyqDockExtension("notes", "Notes", MODULE) {}
    QWidget* createWidget(QWidget* parent) override {
        auto* label = new QLabel("nothing yet", parent);
        label->setObjectName("notesLabel");
        return label;
    }
};

class Action : public LyqActionExtension {
public:
    explicit Action(int& count) : LyqActionExtension("count", "Count", MODULE), mCount(count) {}
    bool isEnabled() const override { return mCount < 2; }
    void trigger(QWidget*) override { ++mCount; }

private:
    int& mCount;
};

/** A layer that draws nothing. */
class ResultLayer : public LyqLayer {
public:
    ResultLayer() : LyqLayer(nullptr, "NoSuchPlugin") {}
    QString title() const override { return "Result"; }
};

class Run : public LyqAnalysisRun {
public:
    explicit Run(std::atomic<bool>& go) : mGo(go) {}
    bool compute(const Progress& progress, QString& message) override {
        while (progress(0.5)) {
            if (mGo) {
                return true;
            }
            QThread::msleep(1);
        }
        message = "";
        return false;
    }
    std::vector<LyrObjectPtr> createLayers() override { return {LyrObjectPtr(new ResultLayer)}; }
    LyqReport report() const override {
        LyqReport made;
        made.id = "waiting";
        made.rows = {{1.5}};
        return made;
    }

private:
    std::atomic<bool>& mGo;
};

class Analysis : public LyqAnalysisExtension {
public:
    explicit Analysis(std::atomic<bool>& go) : LyqAnalysisExtension("waiting", "Waiting", MODULE), mGo(go) {}
    bool accepts(const LyrObject*) const override { return true; }
    std::unique_ptr<LyqAnalysisRun> createRun(LyrObject*, QString&) override { return std::make_unique<Run>(mGo); }

private:
    std::atomic<bool>& mGo;
};

/** Its run looks at the flag alone, and ends when it is allowed to. */
class DeafRun : public LyqAnalysisRun {
public:
    DeafRun(std::atomic<bool>& mayEnd, std::atomic<bool>& told) : mMayEnd(mayEnd), mTold(told) {}
    bool compute(const Progress&, QString&) override {
        while (!mMayEnd) {
            mTold = mTold || cancelFlag();
            QThread::msleep(1);
        }
        return true;
    }
    std::vector<LyrObjectPtr> createLayers() override { return {LyrObjectPtr(new ResultLayer)}; }

private:
    std::atomic<bool>& mMayEnd;
    std::atomic<bool>& mTold;
};

class DeafAnalysis : public LyqAnalysisExtension {
public:
    DeafAnalysis(std::atomic<bool>& mayEnd, std::atomic<bool>& told)
        : LyqAnalysisExtension("deaf", "Deaf", MODULE), mMayEnd(mayEnd), mTold(told) {}
    bool accepts(const LyrObject*) const override { return true; }
    std::unique_ptr<LyqAnalysisRun> createRun(LyrObject*, QString&) override {
        return std::make_unique<DeafRun>(mMayEnd, mTold);
    }

private:
    std::atomic<bool>& mMayEnd;
    std::atomic<bool>& mTold;
};

/** The window, and what a plug-in would do to it. */
class Extensions : public OpenWorkbench {
protected:
    ~Extensions() override { registry.removeAllFrom(MODULE); }

    QAction* findAction(const QString& text) const {
        for (QAction* menu : window->menuBar()->actions()) {
            for (QAction* action : menu->menu()->actions()) {
                if (action->text() == text) {
                    return action;
                }
            }
        }
        return nullptr;
    }
    bool isMenuVisible(const QString& text) const {
        for (QAction* menu : window->menuBar()->actions()) {
            if (menu->text() == text) {
                return menu->isVisible();
            }
        }
        return false;
    }

    LyqExtensionRegistry& registry = LyqExtensionRegistry::instance();
};

}  // namespace

TEST_F(Extensions, a_dock_comes_and_goes_with_its_extension) {
    EXPECT_FALSE(window->findChild<QLabel*>("notesLabel"));
    registry.add(std::make_unique<Dock>());
    auto* dock = window->findChild<QDockWidget*>("dock-notes");
    ASSERT_TRUE(dock);
    EXPECT_EQ(dock->windowTitle(), "Notes");
    EXPECT_TRUE(window->findChild<QLabel*>("notesLabel"));
    registry.removeAllFrom(MODULE);
    EXPECT_FALSE(window->findChild<QDockWidget*>("dock-notes"));
    EXPECT_FALSE(window->findChild<QLabel*>("notesLabel"));
}

TEST_F(Extensions, an_action_stands_in_its_menu_and_follows_its_state) {
    EXPECT_FALSE(isMenuVisible("&Tools"));
    int count = 0;
    registry.add(std::make_unique<Action>(count));
    EXPECT_TRUE(isMenuVisible("&Tools"));
    QAction* action = findAction("Count");
    ASSERT_TRUE(action);
    action->trigger();
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(action->isEnabled());
    action->trigger();
    EXPECT_FALSE(action->isEnabled());
    count = 0;
    registry.announceChange(registry.find<LyqActionExtension>("count"));
    EXPECT_TRUE(action->isEnabled());
    registry.removeAllFrom(MODULE);
    EXPECT_FALSE(findAction("Count"));
    EXPECT_FALSE(isMenuVisible("&Tools"));
}

TEST_F(Extensions, an_analysis_runs_in_the_background_and_adds_layers_and_a_report) {
    std::atomic<bool> go{false};
    registry.add(std::make_unique<Analysis>(go));
    QAction* action = findAction("Waiting");
    ASSERT_TRUE(action);
    EXPECT_FALSE(action->isEnabled());  // nothing is open
    ASSERT_TRUE(open("builtin:casting@16"));
    EXPECT_TRUE(action->isEnabled());
    action->trigger();
    EXPECT_TRUE(window->analyses().isRunning());
    EXPECT_TRUE(window->isBusy());
    EXPECT_FALSE(action->isEnabled());
    EXPECT_TRUE(window->isEnabled());
    go = true;
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->isBusy(); }, 10000));
    ASSERT_EQ(LyqSession::instance().layers().size(), 3u);
    EXPECT_EQ(LyqSession::instance().layers()[2]->title(), "Result");
    ASSERT_EQ(LyqSession::instance().reports().size(), 1u);
    EXPECT_EQ(LyqSession::instance().reports()[0].rows[0][0].toDouble(), 1.5);
    EXPECT_TRUE(action->isEnabled());
}

TEST_F(Extensions, nobody_waits_for_a_cancelled_analysis_and_the_next_one_may_begin) {
    ASSERT_TRUE(open("builtin:casting@16"));
    std::atomic<bool> mayEnd{false};
    std::atomic<bool> told{false};
    registry.add(std::make_unique<DeafAnalysis>(mayEnd, told));
    QString message;
    auto* analysis = registry.find<LyqAnalysisExtension>("deaf");
    ASSERT_TRUE(window->analyses().start(*analysis, message)) << message.toStdString();
    // The run ends only when it is allowed to below: a cancel() that waits for it would never return.
    window->analyses().cancel();
    EXPECT_FALSE(window->analyses().isRunning());
    EXPECT_TRUE(QTest::qWaitFor([&] { return told.load(); })) << "the run's flag is set, without a call of progress";
    ASSERT_TRUE(window->analyses().start(*analysis, message)) << message.toStdString();
    window->analyses().cancel();
    mayEnd = true;
    const int layers = static_cast<int>(LyqSession::instance().layers().size());
    QTest::qWait(100);
    EXPECT_EQ(static_cast<int>(LyqSession::instance().layers().size()), layers);
    EXPECT_FALSE(window->isBusy());
}

TEST_F(Extensions, a_cancelled_analysis_adds_nothing) {
    std::atomic<bool> go{false};
    registry.add(std::make_unique<Analysis>(go));
    ASSERT_TRUE(open("builtin:casting@16"));
    findAction("Waiting")->trigger();
    window->analyses().cancel();
    QTest::qWait(100);
    EXPECT_FALSE(window->isBusy());
    EXPECT_EQ(LyqSession::instance().layers().size(), 2u);
    EXPECT_TRUE(LyqSession::instance().reports().empty());
    EXPECT_TRUE(findAction("Waiting")->isEnabled());
}

TEST_F(Extensions, closing_the_volume_or_removing_the_plug_in_ends_a_running_analysis) {
    std::atomic<bool> go{false};
    registry.add(std::make_unique<Analysis>(go));
    ASSERT_TRUE(open("builtin:casting@16"));
    findAction("Waiting")->trigger();
    window->closeVolume();
    EXPECT_FALSE(window->analyses().isRunning());
    ASSERT_TRUE(open("builtin:casting@16"));
    findAction("Waiting")->trigger();
    registry.removeAllFrom(MODULE);
    EXPECT_FALSE(window->analyses().isRunning());
    EXPECT_FALSE(window->isBusy());
}
