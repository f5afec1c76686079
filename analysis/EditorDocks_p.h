#pragma once

#include <analysis/AnalysisIdentifiers.h>
#include <analysis/LayerPanels_p.h>
#include <lys_core/LyqDockExtension.h>

#include <QCoreApplication>

/** Offers the editor of the active layer's table. */
class ColorsDock : public LyqDockExtension {
    Q_DECLARE_TR_FUNCTIONS(ColorsDock)

public:
    ColorsDock() : LyqDockExtension(QString::fromUtf8("colors"), tr("Colors"), LYS_ANALYSIS_MODULE) {}
    QWidget* createWidget(QWidget* parent) override { return new ColorsPanel(parent); }
};

/** Offers the editor of the active layer's legend. */
class LegendDock : public LyqDockExtension {
    Q_DECLARE_TR_FUNCTIONS(LegendDock)

public:
    LegendDock() : LyqDockExtension(QString::fromUtf8("legend"), tr("Legend"), LYS_ANALYSIS_MODULE) {}
    QWidget* createWidget(QWidget* parent) override { return new LegendPanel(parent); }
};
