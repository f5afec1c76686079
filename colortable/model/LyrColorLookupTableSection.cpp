#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/ApplyingDefault_p.h>
#include <colortable/model/BuildPrivate_p.h>
#include <colortable/model/LyrColorLookupTableSection.h>
#include <colortable/model/eval/SectionRule.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrSingleValueProperty.h>
#include <lyr_core/LyrValueArrayProperty.h>

namespace {

using TypeOP = LyrSingleValueOP<LyrSingleValuePropertyIF<Lyrenum>>;
using PointListOP = LyrValueArrayOP<LyrValueArrayPropertyIF<LyrVector2<float>>>;

lys::eval::Rule ruleOf(Lyrenum type) {
    using lys::eval::Rule;
    if (type == Lyr::Constant) {
        return Rule::Constant;
    }
    if (type == Lyr::Gradient) {
        return Rule::Gradient;
    }
    if (type == Lyr::Rainbow) {
        return Rule::Rainbow;
    }
    if (type == Lyr::InvertedRainbow) {
        return Rule::InvertedRainbow;
    }
    if (type == Lyr::Continue) {
        return Rule::Continue;
    }
    if (type == Lyr::BlackGreenBlueRed) {
        return Rule::BlackGreenBlueRed;
    }
    return type == Lyr::HueCycle ? Rule::HueCycle : Rule::None;
}

}  // namespace

struct LyrColorLookupTable::Section::Private : LyrPrivatePart {
    class TypeAttr : public TypeOP {
    public:
        TypeAttr() {
            setResetValue(Lyr::Constant);
            TypeAttr::resetData();
        }
        bool resetData() override {
            const ApplyingDefault applying(*this);
            return setValue(Lyr::Constant) || TypeOP::resetData();
        }
    };

    class PointListAttr : public PointListOP {
    public:
        PointListAttr() { PointListAttr::resetData(); }
        bool resetData() override {
            const ApplyingDefault applying(*this);
            return initArray(0, -1, nullptr) || PointListOP::resetData();
        }
    };
    class PointListRedAttr : public PointListAttr {};
    class PointListGreenAttr : public PointListAttr {};
    class PointListBlueAttr : public PointListAttr {};
    class PointListAlphaAttr : public PointListAttr {};

    Lyrenum registerProperties(Section& owner) {
        const struct {
            Lyrenum id;
            LyrProperty* property;
        } properties[] = {
            {Lyr::Type, &type},          {Lyr::PointListRed, &red},     {Lyr::PointListGreen, &green},
            {Lyr::PointListBlue, &blue}, {Lyr::PointListAlpha, &alpha},
        };
        bool done = true;
        for (const auto& entry : properties) {
            done = owner.addProperty(entry.id, entry.property) && done;
            entry.property->setFlags(LyrFlags::DATA, 0);
        }
        owner.setFlags(LyrFlags::DATA, 0);
        return done ? Lyrenum(1) : Lyr::Failed;
    }

    TypeAttr type;
    PointListRedAttr red;
    PointListGreenAttr green;
    PointListBlueAttr blue;
    PointListAlphaAttr alpha;
};

LyrColorLookupTable::Section::Section() {
    build();
}

LyrColorLookupTable::Section::Section(const Section& other) : LyrObject(other) {
    build();
    copyFrom(other);
}

LyrColorLookupTable::Section& LyrColorLookupTable::Section::operator=(const Section& other) {
    copyFrom(other);
    return *this;
}

LyrColorLookupTable::Section::~Section() = default;

void LyrColorLookupTable::Section::build() {
    setProtectedFlags(0, 0x110100);
    d = buildPrivate<Private>(*this);
    metaClass().applyDefaultFlags(this);
}

const LyrMetaClass& LyrColorLookupTable::Section::metaClass() {
    static const LyrMetaClass meta("LyrColorLookupTable::Section", sizeof(Section), &LyrObject::metaClass(),
                                   new LyrClassFactory<Section>, LYS_COLORTABLE_MODULE, 0, nullptr, 0, 0, 0,
                                   LyrObject::metaClass().isSingleton());
    return meta;
}

const LyrMetaClass& LyrColorLookupTable::Section::getMetaClass() const {
    return metaClass();
}

lys::eval::SectionData LyrColorLookupTable::Section::readData() const {
    lys::eval::SectionData data;
    data.isSection = d != nullptr;
    if (!d) {
        return data;
    }
    Lyrenum type = Lyr::Constant;
    d->type.getValue(type);
    data.rule = ruleOf(type);
    const PointListOP* const channels[lys::eval::channelCount] = {&d->red, &d->green, &d->blue, &d->alpha};
    for (int i = 0; i < lys::eval::channelCount; ++i) {
        const auto points = channels[i]->view();
        data.has[i] = !points.empty();
        if (data.has[i]) {
            data.first[i] = points.front().y;
            data.last[i] = points.back().y;
        }
    }
    return data;
}

bool LyrColorLookupTable::Section::getColor(const LyrValuePair<float>& range, float value, LyrRGBA<float>& out,
                                            const Section* previous, const Section* next) const {
    const lys::eval::SectionData data = readData();
    lys::eval::SectionData neighbours[2];
    const lys::eval::SectionData* given[2] = {nullptr, nullptr};
    if (data.rule == lys::eval::Rule::Continue) {
        const Section* const sections[2] = {previous, next};
        for (int i = 0; i < 2; ++i) {
            if (sections[i]) {
                neighbours[i] = sections[i]->readData();
                // A neighbour without private part is there, but has no rule.
                neighbours[i].isSection = true;
                given[i] = &neighbours[i];
            }
        }
    }
    return lys::eval::sectionColor(data, range.first, range.second, value, &out.red, given[0], given[1],
                                   LyrRGBA<float>::isClamped());
}

bool LyrColorLookupTable::Section::copyFrom(const LyrObject& other) {
    return d ? LyrObject::copyFrom(other) : failCopy();
}
