#pragma once

#include <lys_core/LyqActionExtension.h>

#include <QHash>
#include <QMap>
#include <QObject>

class LyqExtension;
class QAction;
class QDockWidget;
class QMainWindow;
class QMenu;
class QToolBar;

namespace workbench {

class AnalysisRunner;

/** Brings what plug-ins offer into a window: docks, menu entries, analyses. Follows the registry, so that plug-ins may
 * come and go while the window is open. */
class ExtensionUi : public QObject {
    Q_OBJECT

public:
    /** Menus that actions go to, and where docks are switched. */
    struct Places {
        QMap<LyqActionExtension::Menu, QMenu*> menus;
        QMenu* docks = nullptr;
        QToolBar* toolBar = nullptr;
    };

    ExtensionUi(QMainWindow& window, const Places& places, AnalysisRunner& runner);
    ~ExtensionUi() override;

    /** Switches what has to be: after another document was opened, an analysis began. */
    void updateActions();

    /** The first dock of a plug-in that stands in an area, null if there is none. */
    QDockWidget* firstDock(Qt::DockWidgetArea area) const;

Q_SIGNALS:
    void failed(const QString& message);

private:
    void add(LyqExtension* extension);
    void remove(LyqExtension* extension);
    void addDock(LyqExtension* extension);
    void placeDock(QDockWidget* dock, Qt::DockWidgetArea area);
    void addAction(LyqExtension* extension);
    void addAnalysis(LyqExtension* extension);
    void updateMenus();

    QMainWindow& mWindow;
    Places mPlaces;
    AnalysisRunner& mRunner;
    QHash<LyqExtension*, QAction*> mActions;
    QHash<LyqExtension*, QDockWidget*> mDocks;
};

}  // namespace workbench
