#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/BuildPrivate_p.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <colortable/model/LyrColorLookupTableSection.h>
#include <colortable/model/LyrColorLookupTable_p.h>
#include <colortable/model/eval/ColorPlan.h>
#include <colortable/model/eval/ScalarTable.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrScratch.h>

namespace {

using Section = LyrColorLookupTable::Section;

/** The section that a link leads to, null for anything else. */
const Section* asSection(const LyrObjectLink& link) {
    static const LyrMetaClass& wanted = Section::metaClass();
    const LyrObject* object = link.getLink();
    const LyrMetaClass* meta = object ? &object->getMetaClass() : nullptr;
    return meta && (meta == &wanted || meta->isOfType(wanted)) ? static_cast<const Section*>(object) : nullptr;
}

/** The table as its properties stand at the start of a call. */
struct Reading {
    std::span<const float> positions;
    std::span<const LyrObjectLink> links;
    LyrValuePair<Lyrenum> finiteMode;

    long long positionCount() const { return static_cast<long long>(positions.size()); }
    bool isValid() const { return positions.size() >= 2 && links.size() == positions.size() + 1; }

    long long sectionOf(float value) const { return lys::eval::findSection(value, positions.data(), positionCount()); }

    bool isOutside(long long section) const {
        return lys::eval::isOutside(section, positionCount(), finiteMode.first == 1, finiteMode.second == 1);
    }

    /** The section at an index, null beyond the ends and for a link that leads to none. */
    const Section* neighbour(long long index) const {
        return index >= 0 && index <= positionCount() ? asSection(links[static_cast<std::size_t>(index)]) : nullptr;
    }

    /** The section at an index; a link that leads to none is reported. */
    const Section* resolve(long long index, const LyrObject& table) const {
        const LyrObjectLink& link = links[static_cast<std::size_t>(index)];
        const Section* section = asSection(link);
        if (!section) {
            const LyrClass* source = link.isNull() ? &table : link.getLink();
            LyrError::emitError(LyrError::Message(source, Lyr::WrongType));
        }
        return section;
    }

    bool colour(long long index, const Section& section, float value, LyrRGBA<float>& out) const {
        LyrValuePair<float> interval;
        lys::eval::sectionInterval(index, positions.data(), positionCount(), &interval.first, &interval.second);
        const lys::eval::SectionData data = section.readData();
        if (data.rule == lys::eval::Rule::Continue) {
            return section.getColor(interval, value, out, neighbour(index - 1), neighbour(index + 1));
        }
        // The same colour without the neighbours: looking them up costs more than most colours.
        return lys::eval::sectionColor(data, interval.first, interval.second, value, &out.red, nullptr, nullptr,
                                       LyrRGBA<float>::isClamped());
    }

    /** One entry of an array. The section comes before the finite ends here: a link that leads to no section fails in
     * any case. */
    bool colourEntry(float value, LyrRGBA<float>& out, const LyrObject& table) const {
        const long long index = sectionOf(value);
        const Section* section = resolve(index, table);
        if (section && isOutside(index)) {
            out = LyrRGBA<float>::GRAY(0.0f);
            return true;
        }
        return section && colour(index, *section, value, out);
    }

    /** All sections as plain data. False when memory ran out. */
    bool readSections(LyrScratch<lys::eval::SectionData, 64>& sections) const {
        if (!sections.resize(links.size())) {
            return false;
        }
        for (std::size_t i = 0; i < links.size(); ++i) {
            const Section* section = asSection(links[i]);
            sections[i] = section ? section->readData() : lys::eval::SectionData();
            // One without private part is a section too; as its rule is none, it fails like the scalar path does.
            sections[i].isSection = section != nullptr;
        }
        return true;
    }
};

/** Colours an array with a plan of the whole table. Gives -1 when all is done, else how many entries are left: the last
 * of them cannot be coloured, or (all of them) there was no memory for a plan. */
long long colourWithPlan(const Reading& reading, long long count, const float* values, LyrRGBA<float>* out) {
    LyrScratch<lys::eval::SectionData, 64> sections;
    if (!reading.readSections(sections)) {
        return count;
    }
    lys::eval::TableView view;
    view.positions = reading.positions.data();
    view.positionCount = reading.positionCount();
    view.sections = sections.data();
    view.finiteBelow = reading.finiteMode.first == 1;
    view.finiteAbove = reading.finiteMode.second == 1;
    view.clampedColors = LyrRGBA<float>::isClamped();
    lys::eval::ColorPlan plan;
    if (!plan.build(view)) {
        return count;
    }
    const long long failing = plan.colorize(count, values, &out->red);
    return failing < 0 ? -1 : failing + 1;
}

/** Reads a table's properties; false where they make no valid table, or where there are none. */
template <class Properties>
bool readTable(const Properties* properties, Reading& reading) {
    if (!properties) {
        return false;
    }
    reading.positions = properties->positions.view();
    reading.links = properties->sections.view();
    properties->finiteMode.getValue(reading.finiteMode);
    return reading.isValid();
}

}  // namespace

LyrColorLookupTable::LyrColorLookupTable() {
    build();
}

LyrColorLookupTable::LyrColorLookupTable(const LyrColorLookupTable& other) : LyrObject(other) {
    build();
    copyFrom(other);
}

LyrColorLookupTable& LyrColorLookupTable::operator=(const LyrColorLookupTable& other) {
    copyFrom(other);
    return *this;
}

LyrColorLookupTable::~LyrColorLookupTable() = default;

void LyrColorLookupTable::build() {
    setProtectedFlags(0, 0x110100);
    d = buildPrivate<Private>(*this);
    metaClass().applyDefaultFlags(this);
}

const LyrMetaClass& LyrColorLookupTable::metaClass() {
    static const LyrMetaClass meta("LyrColorLookupTable", sizeof(LyrColorLookupTable), &LyrObject::metaClass(),
                                   new LyrClassFactory<LyrColorLookupTable>, LYS_COLORTABLE_MODULE, 0, nullptr, 0, 0, 0,
                                   LyrObject::metaClass().isSingleton());
    return meta;
}

const LyrMetaClass& LyrColorLookupTable::getMetaClass() const {
    return metaClass();
}

// The finite ends come before the section: a link that leads to no section does not matter outside a finite range.
bool LyrColorLookupTable::getColor(float value, LyrRGBA<float>& out) const {
    Reading reading;
    if (!readTable(d.get(), reading)) {
        return false;
    }
    const long long index = reading.sectionOf(value);
    if (reading.isOutside(index)) {
        out = LyrRGBA<float>::GRAY(0.0f);
        return true;
    }
    const Section* section = reading.resolve(index, *this);
    return section && reading.colour(index, *section, value, out);
}

bool LyrColorLookupTable::getColors(long long count, const float* values, LyrRGBA<float>* out) const {
    Reading reading;
    if (!readTable(d.get(), reading) || (count > 0 && (!values || !out))) {
        return false;
    }
    long long left = count;
    if (lys::eval::ColorPlan::pays(count, reading.positionCount())) {
        left = colourWithPlan(reading, count, values, out);
    }
    // One by one: few values, no memory for a plan, or the entry that fails, which is left and reported as everywhere.
    for (long long i = left - 1; i >= 0; --i) {
        if (!reading.colourEntry(values[i], out[i], *this)) {
            return false;
        }
    }
    return true;
}

bool LyrColorLookupTable::copyFrom(const LyrObject& other) {
    return d ? LyrObject::copyFrom(other) : failCopy();
}

// The table's own news goes first, the section's message follows on its way to the owners.
bool LyrColorLookupTable::iocCallback(Message& message) {
    // A listener may let go of the table; one that nobody counts is not in their hands.
    const LyrObjectPtr keptAlive(getRefCount() > 0 ? this : nullptr);
    if (message.getLinkID() == Lyr::SectionList) {
        Message relayed(this, Lyr::PropertyHasChanged, Lyr::SectionList);
        iocBroadcast(relayed);
    }
    return LyrObject::iocCallback(message);
}
