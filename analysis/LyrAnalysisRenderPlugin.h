#pragma once

#include <analysis/LysAnalysisExport.h>
#include <lyr_core/LyrAction.h>
#include <lyr_opengl/LyrRenderPlugin.h>

/** Gives each view's node of a LyrColoredLayer two drivers: one for slices, one for the surface. */
class LYS_ANALYSIS_EXPORT LyrAnalysisRenderPlugin : public LyrRenderPlugin {
public:
    LyrAnalysisRenderPlugin();

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

private:
    class DriverInitAction : public LyrActionAttr {
    public:
        DriverInitAction() : LyrActionAttr(0, 0) {}
        void check() override;
        void execute() override;
    };

    DriverInitAction mDriverInit;
};
