#include <colortable/ColortableIdentifiers.h>
#include <colortable/viewport/LyrColorLookupTableRenderDriver.h>
#include <colortable/viewport/LyrColorLookupTableRenderPlugin.h>
#include <lyr_core/LyrAction.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrRoleManager.h>
#include <lyr_opengl/LyrViewportObjectNode.h>

#include <exception>

namespace {

/** Makes the plug-in, which has no copies. */
class PluginFactory : public LyrMetaClass::Factory {
public:
    LyrClass* create(void* storage) const override {
        return storage ? new (storage) LyrColorLookupTableRenderPlugin() : new LyrColorLookupTableRenderPlugin();
    }
    LyrClass* createCopy(const LyrClass*, void*) const override { return nullptr; }
    bool assign(LyrClass*, const LyrClass*) const override { return false; }
};

bool sRoleRegistered = false;
const LyrObject::RoleInterface* sRoleInterface = nullptr;  ///< as long as the role manager has it

}  // namespace

class LyrColorLookupTableRenderPlugin::DriverInitAction : public LyrActionAttr {
public:
    DriverInitAction() : LyrActionAttr(0, 0, Lyrenum("ColorLookupTableRenderPlugin", true)) {}

    void check() override {
        if (node()) {
            ok(Lyr::Success);
        } else {
            error(Lyr::WrongType);
        }
    }

    void execute() override {
        LyrSceneGraph::ViewportObjectNode* const viewport = node();
        if (!viewport) {
            return;
        }
        auto* driver = new LyrColorLookupTableRenderDriver(viewport, getObject());
        if (!driver) {
            error(Lyr::AllocationFailed);
            return;
        }
        viewport->prependRenderingDriver(driver);
        ok(Lyr::Success);
    }

private:
    LyrSceneGraph::ViewportObjectNode* node() const {
        return dynamic_cast<LyrSceneGraph::ViewportObjectNode*>(getParameter());
    }
};

LyrColorLookupTableRenderPlugin::LyrColorLookupTableRenderPlugin() : mDriverInit(new DriverInitAction) {
    if (!mDriverInit || !addAction(Lyr::DriverInit, mDriverInit.get())) {
        LyrError::emitError(LyrError::Message(this, mDriverInit ? Lyr::Failed : Lyr::AllocationFailed));
    }
    metaClass().applyDefaultFlags(this);
}

LyrColorLookupTableRenderPlugin::~LyrColorLookupTableRenderPlugin() = default;

const LyrAction* LyrColorLookupTableRenderPlugin::getDriverInit() const noexcept {
    return mDriverInit.get();
}

const LyrMetaClass& LyrColorLookupTableRenderPlugin::metaClass() {
    static const LyrMetaClass meta("LyrColorLookupTableRenderPlugin", sizeof(LyrColorLookupTableRenderPlugin),
                                   &LyrRenderPlugin::metaClass(), new PluginFactory, LYS_COLORTABLE_MODULE, 0, nullptr,
                                   0, 0, 0, LyrRenderPlugin::metaClass().isSingleton());
    return meta;
}

const LyrMetaClass& LyrColorLookupTableRenderPlugin::getMetaClass() const {
    return metaClass();
}

bool LyrColorLookupTableRenderPlugin::registerRole() {
    if (sRoleRegistered) {
        return true;
    }
    try {
        auto roleInterface = std::make_unique<RoleInterface>(Lyr::RenderPlugin);
        const RoleInterface* installed = roleInterface.get();
        sRoleRegistered = RoleManager::addRole(Lyr::RenderPlugin);
        if (sRoleRegistered && RoleManager::addDefaultRole(metaClass(), Lyr::RenderPlugin) &&
            RoleManager::setRoleInterface(Lyr::RenderPlugin, std::move(roleInterface))) {
            sRoleInterface = installed;
            return true;
        }
    } catch (const std::exception&) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
    }
    unregisterRole();
    return false;
}

void LyrColorLookupTableRenderPlugin::unregisterRole() {
    if (!sRoleRegistered) {
        return;
    }
    if (sRoleInterface && RoleManager::getRoleInterface(Lyr::RenderPlugin) == sRoleInterface) {
        RoleManager::setRoleInterface(Lyr::RenderPlugin, nullptr);
    }
    RoleManager::removeDefaultRole(metaClass(), Lyr::RenderPlugin);
    RoleManager::removeRole(Lyr::RenderPlugin);
    sRoleInterface = nullptr;
    sRoleRegistered = false;
}
