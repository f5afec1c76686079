#include <colortable/ColortableIdentifiers.h>
#include <colortable/LibraryInit.h>
#include <colortable/editor/LyqColorLookupTableRenderSettingsEditorWidget.h>
#include <colortable/legend/LegendPlaceholders_p.h>
#include <colortable/legend/LyrColorLookupTableRenderSettings.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <colortable/model/LyrColorLookupTableSection.h>
#include <colortable/presets/LyqPresetColortableHandler.h>
#include <colortable/presets/LyrPresetColortableProxyObject.h>
#include <colortable/viewport/LyqColorLookupTableAnnotation.h>
#include <colortable/viewport/LyrColorLookupTableAnnotationContainer.h>
#include <colortable/viewport/LyrColorLookupTableAnnotationHandler.h>
#include <colortable/viewport/LyrColorLookupTableRenderObject.h>
#include <colortable/viewport/LyrColorLookupTableRenderPlugin.h>
#include <colortable/viewport/LyrColorTableCameraRoleHook.h>
#include <colortable/viewport/LyrColorTableWorkspaceWidgetPreparations.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrModule.h>
#include <lyr_core/LyrRegisteredEnum.h>
#include <lys_core/ApplicationPlaceholders.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqPreferenceManager.h>

#include <iterator>
#include <memory>
#include <optional>

// The whole load order of the library lies in this source, top to bottom: names, constants, classes, the initialiser's
// instance. Unloading runs it backwards. Other sources hold no namespace-scope objects that read Lyr:: constants.

namespace {

constexpr const char* NAMES[] = {
#define LYS_NAME(name) #name,
    LYS_COLORTABLE_IDENTIFIERS(LYS_NAME)};
constexpr const char* LOCAL_NAMES[] = {LYS_COLORTABLE_LOCAL_NAMES(LYS_NAME)};
#undef LYS_NAME

/** Registration records: destroyed last at unload, the last one first. */
std::optional<LyrRegisteredEnum> sRecords[std::size(NAMES)];
std::optional<LyrRegisteredEnum> sLocalRecords[std::size(LOCAL_NAMES)];

/** Registers each missing name by itself: one that fails keeps none of the others from being registered. */
template <std::size_t N>
bool registerNames(const char* const (&names)[N], std::optional<LyrRegisteredEnum> (&records)[N]) {
    bool complete = true;
    for (std::size_t i = 0; i < N; ++i) {
        if (!records[i] || records[i]->get() == Lyrenum(-1)) {
            records[i].emplace(names[i], false, LYS_COLORTABLE_MODULE);
        }
        complete = complete && records[i]->get() != Lyrenum(-1);
    }
    return complete;
}

bool sNamesRegistered = false;

}  // namespace

bool __lyqcolortable_enum_init() {
    if (!sNamesRegistered) {
        sNamesRegistered = registerNames(NAMES, sRecords);
    }
    return sNamesRegistered;
}

namespace {
[[maybe_unused]] const bool sLoaded = __lyqcolortable_enum_init();
[[maybe_unused]] const bool sLocalNamesLoaded = registerNames(LOCAL_NAMES, sLocalRecords);
}  // namespace

namespace Lyr {
#define LYS_DEFINE_IDENTIFIER(name) const Lyrenum name(#name, true);
LYS_COLORTABLE_IDENTIFIERS(LYS_DEFINE_IDENTIFIER)
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

[[maybe_unused]] const LyrMetaClass* const sTableClass = registerClass(LyrColorLookupTable::metaClass);
[[maybe_unused]] const LyrMetaClass* const sSectionClass = registerClass(LyrColorLookupTable::Section::metaClass);
[[maybe_unused]] const LyrMetaClass* const sAnnotationClass = registerClass(LyqColorLookupTableAnnotation::metaClass);
[[maybe_unused]] const LyrMetaClass* const sContainerClass =
    registerClass(LyrColorLookupTableAnnotationContainer::metaClass);
[[maybe_unused]] const LyrMetaClass* const sHandlerClass =
    registerClass(LyrColorLookupTableAnnotationHandler::metaClass);
[[maybe_unused]] const LyrMetaClass* const sRenderObjectClass =
    registerClass(LyrColorLookupTableRenderObject::metaClass);
[[maybe_unused]] const LyrMetaClass* const sRenderPluginClass =
    registerClass(LyrColorLookupTableRenderPlugin::metaClass);
[[maybe_unused]] const LyrMetaClass* const sRenderSettingsClass =
    registerClass(LyrColorLookupTableRenderSettings::metaClass);
[[maybe_unused]] const LyrMetaClass* const sSettingsEditorClass =
    registerClass(LyqColorLookupTableRenderSettingsEditorWidget::metaClass);
[[maybe_unused]] const LyrMetaClass* const sPresetHandlerClass = registerClass(LyqPresetColortableHandler::metaClass);
[[maybe_unused]] const LyrMetaClass* const sPresetProxyClass = registerClass(LyrPresetColortableProxyObject::metaClass);

/** The render plug-in's role, for as long as the library is loaded. */
struct RenderPluginRole {
    RenderPluginRole() { LyrColorLookupTableRenderPlugin::registerRole(); }
    ~RenderPluginRole() { LyrColorLookupTableRenderPlugin::unregisterRole(); }
};
[[maybe_unused]] const RenderPluginRole sRenderPluginRole;

/** Does a part of the initialisation; one that finds no memory is missing then, which is reported. */
template <class Work>
void install(Work work) noexcept {
    try {
        work();
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
    }
}

LYQCOLORTABLE::LibraryInit sInstance;
}  // namespace

namespace LYQCOLORTABLE {

LibraryInit::LibraryInit() : mUseCount(0) {
    __lyqcolortable_enum_init();
}

LibraryInit::~LibraryInit() {
    mGuarded.clear();
    mCameraRoleHook.reset();
    mPreparations.reset();
    if (mUseCount > 0) {
        // Unloaded without a last cleanup(): what points into this library must not stay behind.
        ly::i18n::Placeholders::removeAllFrom(LYS_COLORTABLE_MODULE);
    }
}

void LibraryInit::init() {
    sInstance._init();
}

void LibraryInit::cleanup() {
    sInstance._cleanup();
}

void LibraryInit::_init() {
    if (++mUseCount != 1) {
        return;
    }
    LyqApplication::instance();
    LyqPreferenceManager::instance();
    install([&] { mPreparations = std::make_unique<LyrColorTableWorkspaceWidgetPreparations>(); });
    install([&] { mCameraRoleHook = std::make_unique<LyrColorTableCameraRoleHook>(); });
    install([] { lysAddLegendPlaceholders(); });
}

void LibraryInit::_cleanup() {
    if (mUseCount-- != 1) {
        return;
    }
    LyqPreferenceManager::instance();
    ly::i18n::Placeholders::removeAllFrom(LYS_COLORTABLE_MODULE);
    mPreparations.reset();
    mCameraRoleHook.reset();
}

}  // namespace LYQCOLORTABLE

LYR_DEFINE_MODULE("lys_colortable", __lyqcolortable_enum_init, LYQCOLORTABLE::LibraryInit::init,
                  LYQCOLORTABLE::LibraryInit::cleanup)
