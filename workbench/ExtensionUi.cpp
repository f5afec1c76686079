#include <lys_core/LyqAnalysisExtension.h>
#include <lys_core/LyqDockExtension.h>
#include <lys_core/LyqExtensionRegistry.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqLayerExtension.h>
#include <lys_core/LyqSession.h>
#include <workbench/AnalysisRunner.h>
#include <workbench/ExtensionUi.h>

#include <QAction>
#include <QDockWidget>
#include <QMainWindow>
#include <QMenu>
#include <QToolBar>

namespace workbench {

ExtensionUi::ExtensionUi(QMainWindow& window, const Places& places, AnalysisRunner& runner)
    : mWindow(window), mPlaces(places), mRunner(runner) {
    LyqExtensionRegistry& registry = LyqExtensionRegistry::instance();
    connect(&registry, &LyqExtensionRegistry::added, this, &ExtensionUi::add);
    connect(&registry, &LyqExtensionRegistry::aboutToRemove, this, &ExtensionUi::remove);
    connect(&registry, &LyqExtensionRegistry::changed, this, &ExtensionUi::updateActions);
    connect(&LyqSession::instance(), &LyqSession::documentChanged, this, &ExtensionUi::updateActions);
    connect(&mRunner, &AnalysisRunner::started, this, &ExtensionUi::updateActions);
    connect(&mRunner, &AnalysisRunner::finished, this, &ExtensionUi::updateActions);
    for (LyqExtension* extension : registry.extensions()) {
        add(extension);
    }
    updateMenus();
}

ExtensionUi::~ExtensionUi() {
    // The widgets are of the plug-ins' code: they go while that is there.
    for (LyqExtension* extension : LyqExtensionRegistry::instance().extensions()) {
        remove(extension);
    }
}

void ExtensionUi::add(LyqExtension* extension) {
    addDock(extension);
    addAction(extension);
    addAnalysis(extension);
    if (auto* layers = dynamic_cast<LyqLayerExtension*>(extension)) {
        LyrObject* document = LyqSession::instance().document();
        QString message;
        if (document && layers->isShownAtFirst() && layers->accepts(document)) {
            const LyrObjectPtr layer = layers->createLayer(document, message);
            if (!LyqSession::instance().addLayer(dynamic_cast<LyqLayer*>(layer.get()))) {
                Q_EMIT failed(message);
            }
        }
    }
    updateActions();
    updateMenus();
}

void ExtensionUi::addDock(LyqExtension* extension) {
    auto* offer = dynamic_cast<LyqDockExtension*>(extension);
    if (!offer) {
        return;
    }
    auto* dock = new QDockWidget(offer->title(), &mWindow);
    dock->setObjectName("dock-" + offer->id());
    if (QWidget* content = offer->createWidget(dock)) {
        dock->setWidget(content);
    }
    placeDock(dock, offer->area());
    dock->setVisible(offer->isOpenAtFirst());
    mWindow.restoreDockWidget(dock);
    if (mPlaces.docks) {
        mPlaces.docks->addAction(dock->toggleViewAction());
    }
    mDocks.insert(extension, dock);
}

/** Docks of one area share a place, one tab each, the first one on top. */
void ExtensionUi::placeDock(QDockWidget* dock, Qt::DockWidgetArea area) {
    QDockWidget* first = firstDock(area);
    mWindow.addDockWidget(area, dock);
    if (first) {
        mWindow.tabifyDockWidget(first, dock);
        first->raise();
    }
}

QDockWidget* ExtensionUi::firstDock(Qt::DockWidgetArea area) const {
    for (LyqExtension* extension : LyqExtensionRegistry::instance().extensions()) {
        QDockWidget* dock = mDocks.value(extension);
        if (dock && mWindow.dockWidgetArea(dock) == area) {
            return dock;
        }
    }
    return nullptr;
}

void ExtensionUi::addAction(LyqExtension* extension) {
    auto* offer = dynamic_cast<LyqActionExtension*>(extension);
    QMenu* menu = offer ? mPlaces.menus.value(offer->menu()) : nullptr;
    if (!menu) {
        return;
    }
    auto* action = menu->addAction(offer->icon(), offer->title());
    action->setShortcut(offer->shortcut());
    action->setCheckable(offer->isCheckable());
    connect(action, &QAction::triggered, this, [this, offer] {
        offer->trigger(&mWindow);
        updateActions();
    });
    if (offer->isInToolBar() && mPlaces.toolBar) {
        mPlaces.toolBar->addAction(action);
    }
    mActions.insert(extension, action);
}

void ExtensionUi::addAnalysis(LyqExtension* extension) {
    auto* offer = dynamic_cast<LyqAnalysisExtension*>(extension);
    QMenu* menu = offer ? mPlaces.menus.value(LyqActionExtension::Menu::Analysis) : nullptr;
    if (!menu) {
        return;
    }
    auto* action = menu->addAction(offer->title());
    connect(action, &QAction::triggered, this, [this, offer] {
        QString message;
        if (!mRunner.start(*offer, message)) {
            Q_EMIT failed(message);
        }
    });
    mActions.insert(extension, action);
}

void ExtensionUi::remove(LyqExtension* extension) {
    if (dynamic_cast<LyqAnalysisExtension*>(extension)) {
        mRunner.cancel();
    }
    delete mActions.take(extension);
    delete mDocks.take(extension);
    updateMenus();
}

void ExtensionUi::updateActions() {
    for (auto entry = mActions.cbegin(); entry != mActions.cend(); ++entry) {
        if (const auto* offer = dynamic_cast<LyqActionExtension*>(entry.key())) {
            entry.value()->setEnabled(offer->isEnabled());
            entry.value()->setChecked(offer->isChecked());
        } else if (const auto* analysis = dynamic_cast<LyqAnalysisExtension*>(entry.key())) {
            const LyrObject* document = LyqSession::instance().document();
            entry.value()->setEnabled(document && analysis->accepts(document) && !mRunner.isRunning());
        }
    }
}

/** A menu without entries is not shown. */
void ExtensionUi::updateMenus() {
    for (QMenu* menu : mPlaces.menus) {
        menu->menuAction()->setVisible(!menu->isEmpty());
    }
}

}  // namespace workbench
