#include <colortable/ColortableIdentifiers.h>
#include <colortable/legend/LyrColorLookupTableRenderSettings.h>
#include <colortable/model/ApplyingDefault_p.h>
#include <colortable/model/BuildPrivate_p.h>
#include <lyr_core/LyrBooleanOP.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrReadOnlyProxyExtension.h>
#include <lys_core/ApplicationPlaceholders.h>

namespace {

using ColorOP = LyrSingleValueOP<LyrSingleValuePropertyIF<LyrRGBA<float>>>;
using StringOP = LyrSingleValueOP<LyrSingleValuePropertyIF<const char*>>;
using IntOP = LyrSingleValueOP<LyrSingleValuePropertyIF<long long>>;
using FloatOP = LyrSingleValueOP<LyrSingleValuePropertyIF<float>>;
using EnumOP = LyrSingleValueOP<LyrSingleValuePropertyIF<Lyrenum>>;

/** Flag of the computed caption property. */
constexpr unsigned int COMPUTED_CAPTION_FLAG = 0x400000;

/** Family, 10 points, no pixel size, style hint 5 (any), weight 50 (normal), no italics, lines or fixed pitch. */
constexpr const char* DEFAULT_FONT = "Arial,10,-1,5,50,0,0,0,0,0";

Lyrenum descriptionTemplateId() {
    return Lyrenum("DescriptionTemplate", true);
}

/** A property whose default is a constant of its own: the default is written, the base's reset is the fallback. */
template <class Base, class Default>
class DefaultedAttr : public Base {
public:
    DefaultedAttr() {
        Base::setResetValue(Default::value());
        DefaultedAttr::resetData();
    }
    bool setResetValue(const typename Base::T& value) override {
        mOwn = Base::setResetValue(value);
        return mOwn;
    }
    bool resetData() override {
        const ApplyingDefault applying(*this);
        return this->setValue(mOwn ? this->getResetValue() : Default::value()) || Base::resetData();
    }

private:
    bool mOwn = false;  ///< a derived class has a default of its own
};

struct White {
    static LyrRGBA<float> value() { return LyrRGBA<float>::WHITE(); }
};
struct Black {
    static LyrRGBA<float> value() { return LyrRGBA<float>::BLACK(); }
};
struct DefaultFont {
    static const char* value() { return DEFAULT_FONT; }
};
struct EmptyText {
    static const char* value() { return ""; }
};
struct True {
    static Lyrenum value() { return 1; }
};
struct DefaultThickness {
    static long long value() { return 12; }
};
struct DefaultSize {
    static float value() { return 0.7f; }
};
struct AtLeft {
    static Lyrenum value() { return Lyr::Left; }
};
struct AtRight {
    static Lyrenum value() { return Lyr::Right; }
};
struct AtCenter {
    static Lyrenum value() { return Lyr::Center; }
};

}  // namespace

struct LyrColorLookupTableRenderSettings::Private : LyrPrivatePart {
    class ColorAttr : public DefaultedAttr<ColorOP, White> {};
    class OutlineColorAttr : public DefaultedAttr<ColorOP, Black> {};
    class FontAttr : public DefaultedAttr<StringOP, DefaultFont> {};
    class HasOutlineAttr : public DefaultedAttr<LyrBooleanOP, True> {};
    class ThicknessAttr : public DefaultedAttr<IntOP, DefaultThickness> {};
    class SizeAttr : public DefaultedAttr<FloatOP, DefaultSize> {};
    class PositionAttr : public DefaultedAttr<EnumOP, AtLeft> {};
    class AlignmentAttr : public DefaultedAttr<EnumOP, AtCenter> {};
    class TextPositionAttr : public DefaultedAttr<EnumOP, AtRight> {};
    class TextAlignmentAttr : public DefaultedAttr<EnumOP, AtRight> {};
    class InternalDescriptionAttr : public DefaultedAttr<StringOP, EmptyText> {};
    class RenderingAttr : public DefaultedAttr<LyrBooleanOP, True> {};

    /** Gives an object its `Description`: the template expanded, anew on every read, because the objects that
     * placeholders read may change without a word. A change of the template is told as a change of the description as
     * well. */
    class DescriptionFromTemplateProxyExtension : public LyrReadOnlyProxyExtensionIF<const char*> {
    public:
        ~DescriptionFromTemplateProxyExtension() override { detach(); }

        /** Creates and registers the property. False if the object has a description already, or a step fails. */
        bool attach(LyrObject& owner, LyrProperty& descriptionTemplate) {
            if (owner.getProperty(Lyr::Description)) {
                return false;
            }
            mProxied.setComputed(true);
            if (!owner.addProperty(Lyr::Description, &mProxied)) {
                return false;
            }
            if (!moveTo(&mProxied) || !descriptionTemplate.addPropertyExtension(&mTemplateWatch)) {
                detach();
                return false;
            }
            return true;
        }

        void detach() {
            if (LyrProperty* watched = mTemplateWatch.getProperty()) {
                watched->removePropertyExtension(&mTemplateWatch);
            }
            moveTo(nullptr);
            if (LyrObject* owner = mProxied.getObject()) {
                owner->removeProperty(Lyr::Description);
            }
        }

        LyrProperty& proxied() { return mProxied; }

    protected:
        bool refresh(const char*& value) override {
            const LyrObject* owner = mProxied.getObject();
            const QString text = QString::fromUtf8(lyrGetValue<const char*>(owner, descriptionTemplateId(), ""));
            mExpanded = ApplicationPlaceholders::internalToDisplayText(text, owner).toUtf8();
            value = mExpanded.constData();
            return true;
        }

    private:
        class TemplateWatch : public LyrProperty::Extension {
        public:
            explicit TemplateWatch(DescriptionFromTemplateProxyExtension& proxy) : mProxy(proxy) {}
            void propertyHasChangedHook() override { mProxy.invalidate(); }

        private:
            DescriptionFromTemplateProxyExtension& mProxy;
        };

        StringOP mProxied;
        TemplateWatch mTemplateWatch{*this};
        QByteArray mExpanded;
    };

    struct Entry {
        Lyrenum id;
        LyrProperty* property;
    };

    /** Every step is tried, even when an earlier one failed: 1 if all went well, else Lyr::Failed. */
    Lyrenum registerProperties(LyrColorLookupTableRenderSettings& owner) {
        const Entry properties[] = {
            {Lyr::Color, &color},
            {Lyr::OutlineColor, &outlineColor},
            {Lyr::Font, &font},
            {Lyr::HasOutline, &hasOutline},
            {Lyr::Rendering, &rendering},
            {Lyr::Thickness, &thickness},
            {Lyr::Size, &size},
            {Lyr::Position, &position},
            {Lyr::Alignment, &alignment},
            {Lyr::TextPosition, &textPosition},
            {Lyr::TextAlignment, &textAlignment},
            {descriptionTemplateId(), &internalDescription},
        };
        bool done = true;
        for (const Entry& entry : properties) {
            done = owner.addProperty(entry.id, entry.property) && done;
            entry.property->setFlags(LyrFlags::PRESET, 0);
        }
        done = description.attach(owner, internalDescription) && done;
        description.proxied().setFlags(LyrFlags::PRESET | COMPUTED_CAPTION_FLAG, 0);
        owner.setFlags(LyrFlags::PRESET, 0);
        return done ? Lyrenum(1) : Lyr::Failed;
    }

    /** Copies the values in the order of the members. */
    bool copyValues(const Private& other) {
        LyrProperty* const to[] = {
            &color,    &outlineColor, &font,         &hasOutline,    &thickness,           &size,
            &position, &alignment,    &textPosition, &textAlignment, &internalDescription, &rendering};
        const LyrProperty* const from[] = {&other.color,         &other.outlineColor,        &other.font,
                                           &other.hasOutline,    &other.thickness,           &other.size,
                                           &other.position,      &other.alignment,           &other.textPosition,
                                           &other.textAlignment, &other.internalDescription, &other.rendering};
        bool done = true;
        for (std::size_t i = 0; i < std::size(to); ++i) {
            done = to[i]->copyValueFrom(*from[i]) && done;
        }
        return done;
    }

    ColorAttr color;
    OutlineColorAttr outlineColor;
    FontAttr font;
    HasOutlineAttr hasOutline;
    ThicknessAttr thickness;
    SizeAttr size;
    PositionAttr position;
    AlignmentAttr alignment;
    TextPositionAttr textPosition;
    TextAlignmentAttr textAlignment;
    InternalDescriptionAttr internalDescription;
    RenderingAttr rendering;
    DescriptionFromTemplateProxyExtension description;
};

LyrColorLookupTableRenderSettings::LyrColorLookupTableRenderSettings() {
    build();
}

LyrColorLookupTableRenderSettings::LyrColorLookupTableRenderSettings(const LyrColorLookupTableRenderSettings& other)
    : LyrObject(other) {
    build();
    LyrColorLookupTableRenderSettings::copyFrom(other);
}

LyrColorLookupTableRenderSettings& LyrColorLookupTableRenderSettings::operator=(
    const LyrColorLookupTableRenderSettings& other) {
    copyFrom(other);
    return *this;
}

LyrColorLookupTableRenderSettings::~LyrColorLookupTableRenderSettings() = default;

void LyrColorLookupTableRenderSettings::build() {
    setProtectedFlags(0, 0x110100);
    d = buildPrivate<Private>(*this);
    metaClass().applyDefaultFlags(this);
}

const LyrMetaClass& LyrColorLookupTableRenderSettings::metaClass() {
    static const LyrMetaClass meta("LyrColorLookupTableRenderSettings", sizeof(LyrColorLookupTableRenderSettings),
                                   &LyrObject::metaClass(), new LyrClassFactory<LyrColorLookupTableRenderSettings>,
                                   LYS_COLORTABLE_MODULE, 0, nullptr, 0, 0, 0, LyrObject::metaClass().isSingleton());
    return meta;
}

const LyrMetaClass& LyrColorLookupTableRenderSettings::getMetaClass() const {
    return metaClass();
}

bool LyrColorLookupTableRenderSettings::copyFrom(const LyrObject& other) {
    if (this == &other) {
        return true;
    }
    if (!d) {
        return failCopy();
    }
    if (!other.getMetaClass().isOfType(metaClass())) {
        return LyrObject::copyFrom(other);
    }
    const auto& source = static_cast<const LyrColorLookupTableRenderSettings&>(other);
    // The rest: the naming template and what derived classes add; values that are equal already stay silent.
    const bool done = source.d && d->copyValues(*source.d) && LyrObject::copyFrom(other);
    return done || failCopy();
}
