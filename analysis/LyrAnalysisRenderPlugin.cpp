#include <analysis/AnalysisIdentifiers.h>
#include <analysis/ColoredDrivers_p.h>
#include <analysis/LyrAnalysisRenderPlugin.h>
#include <analysis/LyrColoredLayer.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_opengl/LyrViewportObjectNode.h>

using LyrSceneGraph::ViewportObjectNode;

LyrAnalysisRenderPlugin::LyrAnalysisRenderPlugin() {
    addAction(Lyr::DriverInit, &mDriverInit);
}

const LyrMetaClass& LyrAnalysisRenderPlugin::metaClass() {
    static const LyrMetaClass meta("LyrAnalysisRenderPlugin", sizeof(LyrAnalysisRenderPlugin),
                                   &LyrRenderPlugin::metaClass(), new LyrClassFactory<LyrAnalysisRenderPlugin>,
                                   LYS_ANALYSIS_MODULE, 0, nullptr, 0, 0, 0, true);
    return meta;
}

const LyrMetaClass& LyrAnalysisRenderPlugin::getMetaClass() const {
    return metaClass();
}

void LyrAnalysisRenderPlugin::DriverInitAction::check() {
    const auto* node = dynamic_cast<ViewportObjectNode*>(getParameter());
    if (node && dynamic_cast<LyrColoredLayer*>(node->getObject())) {
        ok(Lyr::Success);
    } else {
        error(Lyr::WrongType);
    }
}

void LyrAnalysisRenderPlugin::DriverInitAction::execute() {
    auto* node = dynamic_cast<ViewportObjectNode*>(getParameter());
    auto* layer = node ? dynamic_cast<LyrColoredLayer*>(node->getObject()) : nullptr;
    if (!layer) {
        return;
    }
    node->appendRenderingDriver(new ColoredSliceDriver(node, *layer));
    node->appendRenderingDriver(new ColoredSurfaceDriver(node, *layer));
    ok(Lyr::Success);
}
