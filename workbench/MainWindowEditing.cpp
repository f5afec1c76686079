#include <lys_core/LyqApplication.h>
#include <workbench/ExtensionUi.h>
#include <workbench/HistoryPanel.h>
#include <workbench/Icons.h>
#include <workbench/MainWindow.h>

#include <QDockWidget>
#include <QMenu>
#include <QToolBar>
#include <QUndoStack>

// Undo, redo and their history, and where the panels stand.

namespace workbench {

namespace {

/** A step's name as a part of a menu text. */
QString escaped(QString name) {
    return name.replace('&', "&&");
}

}  // namespace

void MainWindow::buildEditMenu() {
    LyqApplication& application = LyqApplication::instance();
    QUndoStack& history = application.undoStack();
    const auto add = [&](const QIcon& icon, const QKeySequence& key, bool (LyqApplication::*act)()) {
        QAction* action = mEditMenu->addAction(icon, QString());
        action->setShortcut(key);
        connect(action, &QAction::triggered, this, [&application, act] { (application.*act)(); });
        return action;
    };
    mUndoAction = add(undoIcon(), QKeySequence::Undo, &LyqApplication::undo);
    mRedoAction = add(redoIcon(), QKeySequence::Redo, &LyqApplication::redo);
    mUndoAction->setObjectName("undo");
    mRedoAction->setObjectName("redo");
    const auto refresh = [this, &history] {
        mUndoAction->setEnabled(history.canUndo());
        mRedoAction->setEnabled(history.canRedo());
        mUndoAction->setText(history.canUndo() ? tr("&Undo %1").arg(escaped(history.undoText())) : tr("&Undo"));
        mRedoAction->setText(history.canRedo() ? tr("&Redo %1").arg(escaped(history.redoText())) : tr("&Redo"));
        mUndoAction->setIconText(tr("Undo"));
        mRedoAction->setIconText(tr("Redo"));
    };
    connect(&history, &QUndoStack::indexChanged, this, refresh);
    refresh();
}

void MainWindow::buildToolBar() {
    mToolBar = addToolBar(tr("Tools"));
    mToolBar->setObjectName("tools");
    mToolBar->setMovable(false);
    mToolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    mToolBar->setIconSize(QSize(fontMetrics().height(), fontMetrics().height()));
    mToolBar->addAction(mUndoAction);
    mToolBar->addAction(mRedoAction);
    mPanelMenu->addAction(mToolBar->toggleViewAction());
}

void MainWindow::buildHistory() {
    auto* dock = new QDockWidget(tr("History"), this);
    dock->setObjectName("dock-history");
    dock->setWidget(new HistoryPanel(LyqApplication::instance().undoStack(), dock));
    QDockWidget* first = mExtensions->firstDock(Qt::RightDockWidgetArea);
    addDockWidget(Qt::RightDockWidgetArea, dock);
    if (first) {
        tabifyDockWidget(first, dock);
        first->raise();
    }
    mPanelMenu->addAction(dock->toggleViewAction());
}

/** The panels' widths and heights before the user chose others: wide enough for the columns of a table. */
void MainWindow::arrangePanels() {
    auto* layers = findChild<QDockWidget*>("dock-layers");
    QDockWidget* below = mExtensions->firstDock(Qt::RightDockWidgetArea);
    resizeDocks({layers}, {fontMetrics().averageCharWidth() * 74}, Qt::Horizontal);
    if (below) {
        resizeDocks({layers, below}, {1, 100000}, Qt::Vertical);
    }
}

}  // namespace workbench
