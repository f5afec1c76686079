#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrQuantity.h>
#include <lyr_core/LyrUnitIdentifiers.h>
#include <lys_core/LyrApplicationObject.h>

#include <algorithm>

namespace {

/** Object files may name the class before there is an application. */
[[maybe_unused]] const LyrMetaClass& sKnown = LyrDisplayUnits::metaClass();

}  // namespace

LyrDisplayUnits::UnitListAttr::UnitListAttr() {
    const Lyrenum units[] = {Lyr::Millimeter, Lyr::SquareMillimeter, Lyr::CubicMillimeter, Lyrenum("Degree", true)};
    setResetItems(units);
    resetData();
}

LyrDisplayUnits::LyrDisplayUnits() {
    build();
}

LyrDisplayUnits::LyrDisplayUnits(const LyrDisplayUnits& other) : LyrObject(other) {
    build();
    copyFrom(other);
}

void LyrDisplayUnits::build() {
    addProperty(Lyr::DisplayUnitList, &mUnits);
}

const LyrMetaClass& LyrDisplayUnits::metaClass() {
    static const LyrMetaClass meta("LyrDisplayUnits", sizeof(LyrDisplayUnits), &LyrObject::metaClass(),
                                   new LyrClassFactory<LyrDisplayUnits>, "lys_core", 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyrDisplayUnits::getMetaClass() const {
    return metaClass();
}

Lyrenum LyrDisplayUnits::getDisplayUnit(Lyrenum quantity) const {
    for (const Lyrenum unit : mUnits.view()) {
        if (LyrQuantity::isUnitOf(unit, quantity)) {
            return unit;
        }
    }
    return LyrQuantity::getUnit(quantity);
}

bool LyrDisplayUnits::setDisplayUnit(Lyrenum quantity, Lyrenum unit) {
    if (!LyrQuantity::isUnitOf(unit, quantity)) {
        return false;
    }
    const auto units = mUnits.view();
    const auto present =
        std::find_if(units.begin(), units.end(), [&](Lyrenum at) { return LyrQuantity::isUnitOf(at, quantity); });
    const auto index = static_cast<long long>(present - units.begin());
    return present != units.end() ? mUnits.setArrayItems(index, index, &unit)
                                  : mUnits.insertArrayItems(index, index, &unit);
}

bool LyrDisplayUnits::setInchSystem(bool inches) {
    const Lyrenum metric[] = {Lyr::Millimeter, Lyr::SquareMillimeter, Lyr::CubicMillimeter, Lyrenum("Degree", true)};
    const Lyrenum imperial[] = {Lyr::Inch, Lyr::SquareInch, Lyr::CubicInch, Lyrenum("Degree", true)};
    return mUnits.initArray(0, 3, inches ? imperial : metric);
}

LyrApplicationObject::LyrApplicationObject() {
    // Now, when there is memory, rather than when somebody looks through all objects.
    metaClass();
    const LyrObjectPtr units(new LyrDisplayUnits);
    mDisplayUnits.setValue(LyrObjectLink(units.get(), nullptr, -1));
    addProperty(Lyr::DisplayUnitList, &mDisplayUnits);
    addProperty(Lyr::Workspace, &mWorkspace);
}

const LyrMetaClass& LyrApplicationObject::metaClass() {
    static const LyrMetaClass meta("LyrApplicationObject", sizeof(LyrApplicationObject), &LyrObject::metaClass(),
                                   nullptr, "lys_core", 0, nullptr, 0, 0, 0, true);
    return meta;
}

const LyrMetaClass& LyrApplicationObject::getMetaClass() const {
    return metaClass();
}

bool LyrApplicationObject::iocCallback(Message& message) {
    if (message.getLinkID() == Lyr::DisplayUnitList && message.getPropertyID() == Lyr::DisplayUnitList) {
        Message relayed(this, Lyr::PropertyHasChanged, Lyr::DisplayUnitList);
        iocBroadcast(relayed);
    }
    return LyrObject::iocCallback(message);
}

LyrDisplayUnits& LyrApplicationObject::displayUnits() const {
    return static_cast<LyrDisplayUnits&>(*mDisplayUnits.getTarget());
}
