#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/ApplyingDefault_p.h>
#include <colortable/model/BuildPrivate_p.h>
#include <colortable/viewport/LyrColorLookupTableAnnotationContainer.h>
#include <lyr_core/LyrBooleanOP.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrReadOnlyProxyExtension.h>
#include <lys_core/LyqAnnotation.h>
#include <lys_core/LyqWorkspaceWidget.h>

#include <algorithm>
#include <vector>

namespace {

Lyrenum annotationListId() {
    return Lyrenum("AnnotationList", true);
}

LyqAnnotation* asAnnotation(const LyrObjectLink& link) {
    return dynamic_cast<LyqAnnotation*>(link.getLink());
}

bool reportWrongType(const LyrObject* object) {
    LyrError::emitError(LyrError::Message(object, Lyr::WrongType));
    return false;
}

/** Annotations that were listed before an operation, kept alive until it is done. */
class Remembered {
public:
    void add(const LyrObjectLink& link) {
        if (asAnnotation(link)) {
            mObjects.emplace_back(link.getLink());
        }
    }

    /** Hides those that `isListed` does not name any more. */
    template <class IsListed>
    void hideUnless(IsListed isListed) const {
        for (const LyrObjectPtr& object : mObjects) {
            if (!isListed(object.get())) {
                dynamic_cast<LyqAnnotation&>(*object).setVisible(false);
            }
        }
    }

private:
    std::vector<LyrObjectPtr> mObjects;
};

}  // namespace

struct LyrColorLookupTableAnnotationContainer::Private : LyrPrivatePart {
    class AnnotationListAttr : public LyrObjectHardLinkListOP {
    public:
        // The class of the C++ object counts: annotations of plug-ins need not name the host's class as their meta
        // class's parent.
        unsigned int checkItems(long long count, const LyrObjectLink* items) const override {
            const bool fits = std::all_of(items, items + count, [](const LyrObjectLink& link) {
                return link.isNull() || asAnnotation(link) != nullptr;
            });
            return fits ? 1 : 0;
        }

        bool setArrayItems(long long first, long long last, const LyrObjectLink* items) override {
            Remembered before;
            return remember(first, last, before) && LyrObjectHardLinkListOP::setArrayItems(first, last, items) &&
                   overwritten(before);
        }

        bool initArray(long long first, long long last, const LyrObjectLink* items) override {
            Remembered before;
            return remember(0, getArraySize() - 1, before) && LyrObjectHardLinkListOP::initArray(first, last, items) &&
                   overwritten(before);
        }

        bool insertArrayItems(long long first, long long last, const LyrObjectLink* items) override {
            return LyrObjectHardLinkListOP::insertArrayItems(first, last, items) && assignGroup();
        }

        // Unlike an overwritten annotation a removed one is hidden even if it is still listed elsewhere.
        bool removeArrayItems(long long first, long long last) override {
            Remembered before;
            if (!remember(first, last, before) || !LyrObjectHardLinkListOP::removeArrayItems(first, last)) {
                return false;
            }
            before.hideUnless([](const LyrObject*) { return false; });
            return true;
        }

    private:
        /** False, and an error, when memory ran out: nothing is to be changed then. */
        bool remember(long long first, long long last, Remembered& remembered) const {
            const auto links = view();
            try {
                for (long long i = std::max(first, 0LL); i <= last && i < static_cast<long long>(links.size()); ++i) {
                    remembered.add(links[static_cast<std::size_t>(i)]);
                }
                return true;
            } catch (...) {
                return emitError(Lyr::AllocationFailed);
            }
        }

        bool overwritten(const Remembered& before) {
            before.hideUnless([this](const LyrObject* object) {
                const auto links = view();
                return std::any_of(links.begin(), links.end(),
                                   [&](const LyrObjectLink& link) { return link.getLink() == object; });
            });
            return assignGroup();
        }

        /** Puts every listed annotation into the workspace widget's group for colour bars. The list operation has
         * succeeded whatever comes of this. */
        bool assignGroup() {
            if (!getObject()) {
                return true;  // under construction
            }
            LyrObject* owner = getObject()->getParentLink().getOwner();
            auto* widget = dynamic_cast<LyqWorkspaceWidget*>(owner);
            if (!widget) {
                reportWrongType(owner ? owner : getObject());
                return true;
            }
            LyqAnnotationGroup* group = widget->getAnnotationGroup(Lyr::ColorLookupTableAnnotationGroup);
            if (!group) {
                group = widget->addAnnotationGroup(Lyr::ColorLookupTableAnnotationGroup);
            }
            for (std::size_t i = 0; group && i < view().size(); ++i) {
                if (LyqAnnotation* annotation = asAnnotation(view()[i])) {
                    annotation->setGroup(group);
                }
            }
            return true;
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
            return setValue(1) || LyrBooleanOP::resetData();
        }
    };

    /** The owner of the container's parent link. */
    class WorkspaceWidgetProxy : public LyrReadOnlyProxyExtensionIF<LyrObjectLink> {
    protected:
        bool refresh(LyrObjectLink& value) override {
            const LyrObject* container = getProperty()->getObject();
            value = LyrObjectLink(container ? container->getParentLink().getOwner() : nullptr, nullptr, -1);
            return true;
        }
    };

    Lyrenum registerProperties(LyrColorLookupTableAnnotationContainer& owner) {
        workspaceWidget.setComputed(true);
        annotations.setComputed(true);  // what is listed belongs to a view: neither copied nor stored
        bool done = owner.addProperty(annotationListId(), &annotations);
        done = owner.addProperty(Lyr::WorkspaceWidget, &workspaceWidget) && done;
        done = workspaceWidget.addPropertyExtension(&proxy) && done;
        done = owner.addProperty(Lyr::Rendering, &rendering) && done;
        return done ? Lyrenum(1) : Lyr::Failed;
    }

    AnnotationListAttr annotations;
    LyrObjectSoftLinkOP workspaceWidget;
    WorkspaceWidgetProxy proxy;
    RenderingAttr rendering;
};

LyrColorLookupTableAnnotationContainer::LyrColorLookupTableAnnotationContainer() {
    build();
}

LyrColorLookupTableAnnotationContainer::LyrColorLookupTableAnnotationContainer(
    const LyrColorLookupTableAnnotationContainer& other)
    : LyrObject(other) {
    build();
    copyFrom(other);
}

LyrColorLookupTableAnnotationContainer& LyrColorLookupTableAnnotationContainer::operator=(
    const LyrColorLookupTableAnnotationContainer& other) {
    copyFrom(other);
    return *this;
}

LyrColorLookupTableAnnotationContainer::~LyrColorLookupTableAnnotationContainer() = default;

void LyrColorLookupTableAnnotationContainer::build() {
    setProtectedFlags(0, 0x110100);
    d = buildPrivate<Private>(*this);
    metaClass().applyDefaultFlags(this);
}

const LyrMetaClass& LyrColorLookupTableAnnotationContainer::metaClass() {
    static const LyrMetaClass meta("LyrColorLookupTableAnnotationContainer",
                                   sizeof(LyrColorLookupTableAnnotationContainer), &LyrObject::metaClass(),
                                   new LyrClassFactory<LyrColorLookupTableAnnotationContainer>, LYS_COLORTABLE_MODULE,
                                   0, nullptr, 0, 0, 0, LyrObject::metaClass().isSingleton());
    return meta;
}

const LyrMetaClass& LyrColorLookupTableAnnotationContainer::getMetaClass() const {
    return metaClass();
}
