#pragma once

#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrValueArrayProperty.h>
#include <lys_core/LysCoreExport.h>

/** The units in which quantities are shown: property `DisplayUnitList`, one unit for each quantity. */
class LYS_CORE_EXPORT LyrDisplayUnits : public LyrObject {
public:
    /** Units of the metric system, angles in degrees. */
    LyrDisplayUnits();
    LyrDisplayUnits(const LyrDisplayUnits& other);

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    /** The unit in which a quantity is shown; its internal unit if none is chosen, -1 for a quantity without units. */
    Lyrenum getDisplayUnit(Lyrenum quantity) const;
    /** Chooses a unit of the quantity. False for a unit that is none of it. */
    bool setDisplayUnit(Lyrenum quantity, Lyrenum unit);
    /** Chooses metric units, or those of the inch system, for lengths, areas and volumes. */
    bool setInchSystem(bool inches);

private:
    void build();
    class UnitListAttr : public LyrValueArrayOP<LyrValueArrayPropertyIF<Lyrenum>> {
    public:
        UnitListAttr();
    };
    UnitListAttr mUnits;
};

/** The application as an object of the host's graph: links `DisplayUnitList` (the holder of the display units, owned)
 * and `Workspace`. Its listeners hear of changed display units as a change of its `DisplayUnitList`. */
class LYS_CORE_EXPORT LyrApplicationObject : public LyrObject {
public:
    LyrApplicationObject();

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;
    bool iocCallback(Message& message) override;

    LyrDisplayUnits& displayUnits() const;

private:
    LyrObjectHardLinkOP mDisplayUnits;
    LyrObjectSoftLinkOP mWorkspace;
};
