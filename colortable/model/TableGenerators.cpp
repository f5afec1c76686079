#include <colortable/model/LyrColorLookupTableSection.h>
#include <colortable/model/LyrColorLookupTable_p.h>
#include <colortable/model/SectionBuilder_p.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrInterval.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrScratch.h>
#include <lyr_core/LyrWholeWrite.h>
#include <lys_core/LyqApplication.h>

#include <cmath>
#include <vector>

using Private = LyrColorLookupTable::Private;

namespace {

using Section = LyrColorLookupTable::Section;

/** More steps than this are a typing error: nobody tells their colours apart, and a section takes about 1 KiB. */
constexpr long long MAXIMUM_POSITIONS = 1000000;

/** A quarter turn, the float nearest to pi/2. */
constexpr float QUARTER_TURN = 1.5707964f;

struct Parameters {
    float from;
    float to;
    float step;
    Lyrenum scheme;
};

Parameters readParameters(const LyrObject& target) {
    const LyrVector3<float> numbers =
        lyrGetValue(&target, Lyr::CreationParameters, LyrVector3<float>{0.0f, 0.0f, 0.0f});
    return {numbers.x, numbers.y, numbers.z, lyrGetValue(&target, Lyr::CreationType, Lyr::Rainbow)};
}

/** Positions and sections of a table that is being generated; the sections live as long as this. */
class Draft {
public:
    bool addPosition(float position) { return mPositions.append(position); }

    bool addSection(const SectionRecipe& recipe) {
        LyrObjectRefPtr section = buildSection(recipe);
        if (!section || !mLinks.append(LyrObjectLink(section.get(), nullptr, -1))) {
            return false;
        }
        mHeld.push_back(section);
        return true;
    }

    bool addConstant(const LyrRGBA<float>& color) { return addSection({Lyr::Constant, &color}); }

    /** Writes positions, sections and the label mode, in this order: all of them or none. */
    Lyrenum store(LyrObject& target, Lyrenum autoLabel) const {
        const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>> positions(&target, Lyr::PositionList);
        const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<LyrObjectLink>> sections(&target, Lyr::SectionList);
        if (!positions || !sections) {
            return Lyr::Failed;
        }
        LyrWholeWrite whole;
        if (!whole.add(positions.get()) || !whole.add(sections.get())) {
            return Lyr::AllocationFailed;
        }
        if (!positions->initArray(0, lastOf(mPositions), mPositions.data()) ||
            !sections->initArray(0, lastOf(mLinks), mLinks.data()) ||
            !lyrSetValue(&target, Lyr::AutoLabel, autoLabel)) {
            return Lyr::Failed;
        }
        whole.keep();
        return Lyr::Success;
    }

private:
    template <class List>
    static long long lastOf(const List& list) {
        return static_cast<long long>(list.size()) - 1;
    }

    LyrScratch<float> mPositions;
    LyrScratch<LyrObjectLink> mLinks;
    std::vector<LyrObjectPtr> mHeld;
};

/** The temporary section that gives the colours of a scheme; null, and an error, if it is no section. */
LyrObjectRefPtr makeSchemeSection(Lyrenum scheme) {
    LyrObjectRefPtr made("LyrColorLookupTable::Section", Lyr::DocumentScope);
    if (!made || !made->getMetaClass().isOfType(Section::metaClass())) {
        LyrError::emitError(LyrError::Message(made.get(), Lyr::WrongType));
        return {};
    }
    const LyrLocalClassFlags filling(made.get(), LyrFlags::DOCUMENT, 0);
    lyrSetValue(made.get(), Lyr::Type, scheme);
    return made;
}

/** n positions from a rounded number of steps: trunc(floor(steps + 1/2)) + 1, at least 2, in single precision. 0 if
 * that are too many. A quotient that is no number, or negative, counts as too few. */
long long positionCount(float steps) {
    const float rounded = std::floor(steps + 0.5f);
    if (rounded >= static_cast<float>(MAXIMUM_POSITIONS)) {
        return 0;
    }
    return rounded >= 1.0f ? static_cast<long long>(rounded) + 1 : 2;
}

/** The colours of the steps, one section each, between the two outer ones. A scheme without a rule gives transparent
 * black: the result of the evaluation is not looked at. */
bool addSteps(Draft& draft, const Section& scheme, long long positions) {
    const long long steps = positions - 1;
    bool done = draft.addConstant(COLOR_BELOW_RANGE);
    for (long long i = 0; done && i < steps; ++i) {
        LyrRGBA<float> color(0.0f, 0.0f, 0.0f, 1.0f);
        if (steps >= 2) {
            scheme.getColor({0.0f, static_cast<float>(positions - 2)}, static_cast<float>(i), color, nullptr, nullptr);
        } else {
            scheme.getColor({0.0f, 1.0f}, 0.5f, color, nullptr, nullptr);
        }
        done = draft.addConstant(color);
    }
    return done && draft.addConstant(COLOR_ABOVE_RANGE);
}

bool areFinite(const Parameters& parameters) {
    return std::isfinite(parameters.from) && std::isfinite(parameters.to) && std::isfinite(parameters.step);
}

/** What both stepped generators do once the positions are known. */
Lyrenum storeSteps(LyrObject& target, Draft& draft, const LyrObjectRefPtr& scheme, long long positions) {
    if (!addSteps(draft, static_cast<const Section&>(*scheme.get()), positions)) {
        return Lyr::AllocationFailed;
    }
    return draft.store(target, 0);
}

Lyrenum generateSmooth(LyrObject& target) {
    const Parameters given = readParameters(target);
    if (!std::isfinite(given.from) || !std::isfinite(given.to) || given.from >= given.to) {
        return Lyr::InvalidParameters;
    }
    Draft draft;
    const bool made = draft.addPosition(given.from) && draft.addPosition(given.to) &&
                      draft.addSection({Lyr::Constant, &COLOR_BELOW_RANGE, "ColorLookupTable_SectionNeg", true}) &&
                      draft.addSection({given.scheme, nullptr, "ColorLookupTable_Section", true}) &&
                      draft.addSection({Lyr::Constant, &COLOR_ABOVE_RANGE, "ColorLookupTable_SectionPos", true});
    if (!made) {
        return Lyr::AllocationFailed;
    }
    return draft.store(target, 1);
}

// The section of the scheme is made before the numbers are looked at; the sphere generator does it the other way round.
Lyrenum generateStepped(LyrObject& target) {
    const Parameters given = readParameters(target);
    const LyrObjectRefPtr scheme = makeSchemeSection(given.scheme);
    const float width = given.to - given.from;
    if (!scheme || !areFinite(given) || !std::isfinite(width) || given.from >= given.to || given.step <= 0.0f) {
        return Lyr::InvalidParameters;
    }
    const long long count = positionCount(width / given.step);
    if (count == 0) {
        return Lyr::InvalidParameters;
    }
    Draft draft;
    const float delta = width / static_cast<float>(count - 1);
    float position = given.from;
    for (long long k = 0; k < count; ++k) {
        if (!draft.addPosition(position)) {
            return Lyr::AllocationFailed;
        }
        position += delta;  // summed up, so the last one may differ from `to` by some ulps
    }
    return storeSteps(target, draft, scheme, count);
}

/** A cosine taken in double precision and narrowed. */
float cosine(float angle) {
    return static_cast<float>(std::cos(static_cast<double>(angle)));
}

Lyrenum generateSphereSegments(LyrObject& target) {
    const Parameters given = readParameters(target);
    const LyrInterval<float, float> quarter(0.0f, QUARTER_TURN);
    const float from = quarter.clamp(given.from);
    const float to = quarter.clamp(given.to);
    if (!areFinite(given) || from >= to || given.step <= 0.0f) {
        return Lyr::InvalidParameters;
    }
    const LyrObjectRefPtr scheme = makeSchemeSection(given.scheme);
    const float first = cosine(from);
    const float last = cosine(to);
    const long long count = positionCount((last - first) / (cosine(from + given.step) - first));
    if (!scheme || count == 0) {
        return Lyr::InvalidParameters;
    }
    Draft draft;
    const float delta = (last - first) / static_cast<float>(count - 1);
    float height = first;
    for (long long k = 0; k < count; ++k) {
        if (!draft.addPosition(static_cast<float>(std::acos(static_cast<double>(height))))) {
            return Lyr::AllocationFailed;
        }
        height += delta;
    }
    return storeSteps(target, draft, scheme, count);
}

/** Runs a generator on an action's target; the outcome as a code, Lyr::Success if all went well. */
template <class Generator>
Lyrenum runGenerator(LyrObject* target, Generator generator) {
    try {
        return target ? generator(*target) : Lyr::InvalidParameters;
    } catch (...) {
        return Lyr::AllocationFailed;
    }
}

/** Stores the parameters outside of any undo step of its own, then runs the action as one. */
bool create(LyrObject* table, const LyrVector3<float>& parameters, Lyrenum type, Lyrenum action) {
    if (!table || !lyrSetValue(table, Lyr::CreationParameters, parameters) ||
        !lyrSetValue(table, Lyr::CreationType, type)) {
        return false;
    }
    LyqApplication& application = LyqApplication::instance();
    const auto token = application.userActionBegin(QString());
    if (token == 0) {
        return false;  // a table that cannot be brought back is not replaced
    }
    if (!table->runAction(action)) {
        application.userActionAborted(token);
        return false;
    }
    return application.userActionEnd(token, QString());
}

}  // namespace

void Private::CreateSmoothAction::check() {
    ok(1);
}

void Private::CreateSmoothAction::execute() {
    const Lyrenum outcome = runGenerator(getObject(), generateSmooth);
    outcome == Lyr::Success ? ok(1) : error(outcome);
}

void Private::CreateSmoothAction::cleanUp() {}

void Private::CreateSteppedAction::check() {
    ok(1);
}

void Private::CreateSteppedAction::execute() {
    const Lyrenum outcome = runGenerator(getObject(), generateStepped);
    outcome == Lyr::Success ? ok(1) : error(outcome);
}

void Private::CreateSteppedAction::cleanUp() {}

void Private::CreateSphereSegmentSteppedAction::check() {
    ok(1);
}

void Private::CreateSphereSegmentSteppedAction::execute() {
    const Lyrenum outcome = runGenerator(getObject(), generateSphereSegments);
    outcome == Lyr::Success ? ok(1) : error(outcome);
}

void Private::CreateSphereSegmentSteppedAction::cleanUp() {}

bool LyrColorLookupTable::createSmooth(LyrObject* table, float from, float to, Lyrenum type) {
    return create(table, {from, to, 0.0f}, type, Lyr::CreateSmooth);
}

bool LyrColorLookupTable::createStepped(LyrObject* table, float from, float to, float step, Lyrenum type) {
    return create(table, {from, to, step}, type, Lyr::CreateStepped);
}

bool LyrColorLookupTable::createSphereSegmentStepped(LyrObject* table, float from, float to, float step, Lyrenum type) {
    return create(table, {from, to, step}, type, Lyr::CreateSphereSegmentStepped);
}
