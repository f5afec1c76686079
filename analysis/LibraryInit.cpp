#include <analysis/AnalysisIdentifiers.h>
#include <analysis/AnnotationHandlerHook_p.h>
#include <analysis/DefectDock_p.h>
#include <analysis/EditorDocks_p.h>
#include <analysis/LibraryInit.h>
#include <analysis/LyrAnalysisRenderPlugin.h>
#include <analysis/LyrColoredLayer.h>
#include <analysis/LyrDefectDetectionColorLookupTableRenderSettings.h>
#include <analysis/LyrDefectLayer.h>
#include <analysis/LyrLayerAnnotationHandler.h>
#include <analysis/LyrThicknessLayer.h>
#include <analysis/LyrValueLayer.h>
#include <analysis/LyrWallThicknessColorLookupTableRenderSettings.h>
#include <analysis/ValueLayerExtension_p.h>
#include <analysis/VolumeAnalyses_p.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/LibraryInit.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrModule.h>
#include <lyr_core/LyrRegisteredEnum.h>
#include <lys_core/LyqExtensionRegistry.h>
#include <lys_core/LyqPresetHandler.h>
#include <lys_core/LyqPresetRegistry.h>
#include <lys_core/LyqSession.h>

#include <iterator>
#include <memory>
#include <optional>
#include <utility>

// The whole load order of the library lies in this source, top to bottom: names, constants, classes, the initialiser's
// instance. Unloading runs it backwards. Other sources hold no namespace-scope objects that read Lyr:: constants.

namespace {

constexpr const char* NAMES[] = {
#define LYS_NAME(name) #name,
    LYS_ANALYSIS_IDENTIFIERS(LYS_NAME)};
#undef LYS_NAME

std::optional<LyrRegisteredEnum> sRecords[std::size(NAMES)];
bool sNamesRegistered = false;

}  // namespace

bool __lyqanalysis_enum_init() {
    if (sNamesRegistered) {
        return true;
    }
    bool complete = true;
    for (std::size_t i = 0; i < std::size(NAMES); ++i) {
        if (!sRecords[i] || sRecords[i]->get() == Lyrenum(-1)) {
            sRecords[i].emplace(NAMES[i], false, LYS_ANALYSIS_MODULE);
        }
        complete = complete && sRecords[i]->get() != Lyrenum(-1);
    }
    sNamesRegistered = complete;
    return complete;
}

namespace {
[[maybe_unused]] const bool sLoaded = __lyqanalysis_enum_init();
}  // namespace

namespace Lyr {
#define LYS_DEFINE_IDENTIFIER(name) const Lyrenum name(#name, true);
LYS_ANALYSIS_IDENTIFIERS(LYS_DEFINE_IDENTIFIER)
#undef LYS_DEFINE_IDENTIFIER
}  // namespace Lyr

namespace {
/** Registers a class. One whose factory finds no memory is missing, which is reported: who loads the library hears it.
 */
const LyrMetaClass* registerClass(const LyrMetaClass& (*metaClass)()) noexcept {
    try {
        return &metaClass();
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return nullptr;
    }
}

[[maybe_unused]] const LyrMetaClass* const sPluginClass = registerClass(LyrAnalysisRenderPlugin::metaClass);
[[maybe_unused]] const LyrMetaClass* const sLayerClass = registerClass(LyrColoredLayer::metaClass);
[[maybe_unused]] const LyrMetaClass* const sValueLayerClass = registerClass(LyrValueLayer::metaClass);
[[maybe_unused]] const LyrMetaClass* const sResultLayerClass = registerClass(LyrResultLayer::metaClass);
[[maybe_unused]] const LyrMetaClass* const sThicknessLayerClass = registerClass(LyrThicknessLayer::metaClass);
[[maybe_unused]] const LyrMetaClass* const sDefectLayerClass = registerClass(LyrDefectLayer::metaClass);
[[maybe_unused]] const LyrMetaClass* const sThicknessSettingsClass =
    registerClass(LyrWallThicknessColorLookupTableRenderSettings::metaClass);
[[maybe_unused]] const LyrMetaClass* const sDefectSettingsClass =
    registerClass(LyrDefectDetectionColorLookupTableRenderSettings::metaClass);
[[maybe_unused]] const LyrMetaClass* const sHandlerClass = registerClass(LyrLayerAnnotationHandler::metaClass);

std::unique_ptr<AnnotationHandlerHook> sHandlerHook;
/** Whether the presets of tables are offered by a handler made here. */
bool sHasPresets = false;

LYQANALYSIS::LibraryInit sInstance;
}  // namespace

namespace LYQANALYSIS {

LibraryInit::~LibraryInit() {
    if (mUseCount > 0) {
        // Unloaded without a last cleanup(): what points into this library must not stay behind.
        remove();
    }
}

void LibraryInit::init() {
    if (++sInstance.mUseCount == 1) {
        sInstance.install();
    }
}

void LibraryInit::cleanup() {
    if (sInstance.mUseCount-- == 1) {
        sInstance.remove();
    }
}

void LibraryInit::install() {
    // As one more user of the library that draws the legends.
    LYQCOLORTABLE::LibraryInit::init();
    sHandlerHook = std::make_unique<AnnotationHandlerHook>();
    sHasPresets = LyqPresetRegistry::instance().create("LyqPresetColortableHandler", Lyr::ColorLookupTable,
                                                       "Colortable") != nullptr;
    LyqExtensionRegistry::instance().add(std::make_unique<ValueLayerExtension>());
    LyqExtensionRegistry::instance().add(std::make_unique<ColorsDock>());
    LyqExtensionRegistry::instance().add(std::make_unique<LegendDock>());
    LyqExtensionRegistry::instance().add(std::make_unique<DefectVolumeAnalysis>());
    LyqExtensionRegistry::instance().add(std::make_unique<WallThicknessAnalysis>());
    LyqExtensionRegistry::instance().add(std::make_unique<DefectDock>());
}

void LibraryInit::remove() {
    LyqExtensionRegistry::instance().removeAllFrom(LYS_ANALYSIS_MODULE);
    LyqSession::instance().removeLayersOf(LYS_ANALYSIS_MODULE);
    sHandlerHook.reset();
    if (std::exchange(sHasPresets, false)) {
        LyqPresetRegistry::instance().release(Lyr::ColorLookupTable);
    }
    LYQCOLORTABLE::LibraryInit::cleanup();
}

}  // namespace LYQANALYSIS

LYR_DEFINE_MODULE("lys_analysis", __lyqanalysis_enum_init, LYQANALYSIS::LibraryInit::init,
                  LYQANALYSIS::LibraryInit::cleanup)
