#pragma once

#include <analysis/AnalysisIdentifiers.h>
#include <analysis/DefectPanel.h>
#include <lys_core/LyqDockExtension.h>

#include <QCoreApplication>

/** Offers the list of defects. */
class DefectDock : public LyqDockExtension {
    Q_DECLARE_TR_FUNCTIONS(DefectDock)

public:
    DefectDock() : LyqDockExtension(QString::fromUtf8("defects"), tr("Defects"), LYS_ANALYSIS_MODULE) {}

    Qt::DockWidgetArea area() const override { return Qt::BottomDockWidgetArea; }
    // It opens when there are defects to list.
    bool isOpenAtFirst() const override { return false; }
    QWidget* createWidget(QWidget* parent) override { return new DefectPanel(parent); }
};
