#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/ApplyingDefault_p.h>
#include <colortable/model/BuildPrivate_p.h>
#include <colortable/viewport/LiveObjects_p.h>
#include <colortable/viewport/LyrColorLookupTableRenderObject.h>
#include <lyr_core/LyrBooleanOP.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrReadOnlyProxyExtension.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqWorkspaceWidget.h>

namespace {

LyrObject* linkedBy(const LyrObject* object, Lyrenum id) {
    return lyrGetValue(object, id, LyrObjectLink()).getLink();
}

/** A slice view's camera, else a scene view's: which property there is decides, even if it links nothing. */
LyrObject* cameraOf(const LyqWorkspaceWidget& widget) {
    return linkedBy(&widget, widget.getProperty(Lyr::SliceCamera) ? Lyr::SliceCamera : Lyr::SceneCamera);
}

bool renders(const LyrObject* camera, const LyrObject* wanted) {
    LyrValueArrayOPCache<LyrObjectLink> rendered;
    if (!camera || !rendered.load(camera, Lyr::RenderedObjectList)) {
        return false;
    }
    for (const LyrObjectLink& link : rendered.items()) {
        if (link.getLink() == wanted) {
            return true;
        }
    }
    return false;
}

/** The workspace widget whose camera renders an object. */
LyrObject* workspaceWidgetOf(const LyrObject* renderObject) {
    const lys::viewport::LiveObjects widgets("LyqWorkspaceWidget");
    for (LyrClass* object : widgets) {
        auto* widget = dynamic_cast<LyqWorkspaceWidget*>(object);
        if (!widget) {
            LyrError::emitError(LyrError::Message(object, Lyr::WrongType));
        } else if (renders(cameraOf(*widget), renderObject)) {
            return widget;
        }
    }
    return nullptr;
}

}  // namespace

struct LyrColorLookupTableRenderObject::Private : LyrPrivatePart {
    /** Finds the view that shows the object. A change of the application object or of the workspace calls for a new
     * look. */
    class WorkspaceWidgetProxy : public LyrReadOnlyProxyExtensionIF<LyrObjectLink> {
    public:
        void propertyExtensionAddHook(LyrProperty* property) override {
            LyrReadOnlyProxyExtensionIF::propertyExtensionAddHook(property);
            listen();
        }

        bool iocCallback(Message& message) override {
            const LyrIOC* sender = message.getSender();
            if (sender && (sender == mApplication.getSender() || sender == mWorkspace.getSender())) {
                listen();
                invalidate();
            }
            return LyrReadOnlyProxyExtensionIF::iocCallback(message);
        }

    protected:
        bool refresh(LyrObjectLink& value) override {
            listen();
            value = LyrObjectLink(workspaceWidgetOf(getProperty()->getObject()), nullptr, -1);
            return true;
        }

    private:
        void listen() {
            LyrObject* application = &LyqApplication::instance().object();
            connectTo(mApplication, application);
            connectTo(mWorkspace, linkedBy(application, Lyr::Workspace));
        }
        void connectTo(LyrIOCConnection& line, LyrIOC* sender) {
            if (line.getSender() != sender) {
                line.connect(sender, this, LyrIOCConnection::Kind::Handle, -1);
            }
        }

        // Lines without a reference: a legend keeps no workspace alive.
        LyrIOCConnection mApplication;
        LyrIOCConnection mWorkspace;
    };

    class RenderPluginAttr : public LyrObjectHardLinkOP {
    public:
        /** The plug-in is found, or made, by its name. */
        bool resetData() override {
            const ApplyingDefault applying(*this);
            const LyrObjectRefPtr plugin("LyrColorLookupTableRenderPlugin", Lyr::TransientScope);
            if (plugin) {
                plugin->prepareRoles();
            }
            return setValue(LyrObjectLink(plugin.get(), nullptr, -1));
        }
        /** There is one plug-in: a copy links the same. */
        bool copyValueFrom(const LyrProperty& source) override {
            LyrObjectLink link;
            const auto* typed = getInterfaceConst(&source);
            return typed && typed->getValue(link) && setValue(link);
        }
    };

    class RenderingAttr : public LyrBooleanOP {
    public:
        RenderingAttr() {
            setResetValue(1);
            RenderingAttr::resetData();
        }
        bool resetData() override {
            const ApplyingDefault applying(*this);
            return LyrBooleanOP::resetData();
        }
    };

    Lyrenum registerProperties(LyrColorLookupTableRenderObject& owner) {
        handlers.setResetMode(Lyr::Object);
        workspaceWidget.setComputed(true);
        bool done = owner.addProperty(Lyr::WorkspaceWidget, &workspaceWidget);
        done = workspaceWidget.addPropertyExtension(&proxy) && done;
        done = owner.addProperty(Lyr::AnnotationHandlerList, &handlers) && done;
        done = owner.addProperty(Lyr::RenderPlugin, &renderPlugin) && done;
        done = owner.addProperty(Lyr::Rendering, &rendering) && done;
        return done ? Lyr::Success : Lyr::Failed;
    }

    LyrObjectSoftLinkOP workspaceWidget;
    WorkspaceWidgetProxy proxy;
    LyrObjectHardLinkListOP handlers;
    RenderPluginAttr renderPlugin;
    RenderingAttr rendering;
};

LyrColorLookupTableRenderObject::LyrColorLookupTableRenderObject() {
    build();
    if (d) {
        d->renderPlugin.resetData();
    }
}

LyrColorLookupTableRenderObject::LyrColorLookupTableRenderObject(const LyrColorLookupTableRenderObject& other)
    : LyrObject(other) {
    build();
    copyFrom(other);
}

LyrColorLookupTableRenderObject& LyrColorLookupTableRenderObject::operator=(
    const LyrColorLookupTableRenderObject& other) {
    copyFrom(other);
    return *this;
}

LyrColorLookupTableRenderObject::~LyrColorLookupTableRenderObject() = default;

void LyrColorLookupTableRenderObject::build() {
    setProtectedFlags(0, 0x110100);
    d = buildPrivate<Private>(*this);
    metaClass().applyDefaultFlags(this);
}

const LyrMetaClass& LyrColorLookupTableRenderObject::metaClass() {
    static const LyrMetaClass meta("LyrColorLookupTableRenderObject", sizeof(LyrColorLookupTableRenderObject),
                                   &LyrObject::metaClass(), new LyrClassFactory<LyrColorLookupTableRenderObject>,
                                   LYS_COLORTABLE_MODULE, 0, nullptr, 0, 0, 0, LyrObject::metaClass().isSingleton());
    return meta;
}

const LyrMetaClass& LyrColorLookupTableRenderObject::getMetaClass() const {
    return metaClass();
}
