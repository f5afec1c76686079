#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/ApplyingDefault_p.h>
#include <colortable/model/BuildPrivate_p.h>
#include <colortable/presets/LyrPresetColortableProxyObject.h>
#include <lyr_core/LyrBooleanOP.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrInterval.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrSingleValueProperty.h>

struct LyrPresetColortableProxyObject::Private : LyrPrivatePart {
    using FloatPairOP = LyrSingleValueOP<LyrSingleValuePropertyIF<LyrValuePair<float>>>;

    class AbsoluteModeAttr : public LyrBooleanOP {
    public:
        AbsoluteModeAttr() {
            setResetValue(0);
            AbsoluteModeAttr::resetData();
        }
        bool resetData() override {
            const ApplyingDefault applying(*this);
            return setValue(0) || LyrBooleanOP::resetData();
        }
    };
    class ReferenceRangeAttr : public FloatPairOP {
    public:
        ReferenceRangeAttr() {
            setResetValue(LyrInterval<float>::EMPTY().toPair());
            ReferenceRangeAttr::resetData();
        }
        bool resetData() override {
            const ApplyingDefault applying(*this);
            return setValue(LyrInterval<float>::EMPTY().toPair()) || FloatPairOP::resetData();
        }
    };
    class ColorLookupTableAttr : public LyrObjectHardLinkOP {
    public:
        ColorLookupTableAttr() { ColorLookupTableAttr::resetData(); }
        /** Links a new default table. */
        bool resetData() override {
            const ApplyingDefault applying(*this);
            const LyrObjectRefPtr fresh("LyrColorLookupTable", Lyr::TransientScope);
            const bool made = fresh && fresh->prepareRoles();
            return (made && setValue(LyrObjectLink(fresh.get(), nullptr, -1))) || LyrObjectHardLinkOP::resetData();
        }
    };

    Lyrenum registerProperties(LyrPresetColortableProxyObject& owner) {
        bool done = owner.addProperty(Lyr::AbsoluteMode, &absoluteMode);
        done = owner.addProperty(Lyr::ReferenceRange, &referenceRange) && done;
        done = owner.addProperty(Lyr::ColorLookupTable, &table) && done;
        return done ? Lyrenum(1) : Lyr::Failed;
    }

    AbsoluteModeAttr absoluteMode;
    ReferenceRangeAttr referenceRange;
    ColorLookupTableAttr table;
};

LyrPresetColortableProxyObject::LyrPresetColortableProxyObject() {
    build();
}

LyrPresetColortableProxyObject::LyrPresetColortableProxyObject(const LyrPresetColortableProxyObject& other)
    : LyrObject(other) {
    build();
    copyFrom(other);
}

LyrPresetColortableProxyObject& LyrPresetColortableProxyObject::operator=(const LyrPresetColortableProxyObject& other) {
    copyFrom(other);
    return *this;
}

LyrPresetColortableProxyObject::~LyrPresetColortableProxyObject() = default;

void LyrPresetColortableProxyObject::build() {
    setProtectedFlags(0, 0x110100);
    d = buildPrivate<Private>(*this);
    metaClass().applyDefaultFlags(this);
}

const LyrMetaClass& LyrPresetColortableProxyObject::metaClass() {
    static const LyrMetaClass meta("LyrPresetColortableProxyObject", sizeof(LyrPresetColortableProxyObject),
                                   &LyrObject::metaClass(), new LyrClassFactory<LyrPresetColortableProxyObject>,
                                   LYS_COLORTABLE_MODULE, 0, nullptr, 0, 0, 0, LyrObject::metaClass().isSingleton());
    return meta;
}

const LyrMetaClass& LyrPresetColortableProxyObject::getMetaClass() const {
    return metaClass();
}

bool LyrPresetColortableProxyObject::copyFrom(const LyrObject& other) {
    return d ? LyrObject::copyFrom(other) : failCopy();
}
