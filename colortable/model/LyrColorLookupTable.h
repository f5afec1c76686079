#pragma once

#include <colortable/LysColortableExport.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrRGBA.h>

#include <memory>

/** Maps a scalar value, in the units of the data, to a colour.
 *
 *  The value axis is cut by P ascending boundaries (`PositionList`) into P + 1 sections (`SectionList`), each of which
 * colours its own interval; the first lies below the first boundary, the last above the last. A table is valid with P
 * >= 2 and exactly P + 1 sections; any other colours nothing. Nothing is cached: every call reads the properties
 * afresh, so a table that nobody is writing may be evaluated from several threads at once.
 *
 *  Listeners hear of a changed section as a change of the table's `SectionList`. Owners of the table hear the section's
 * own message as well. */
class LYS_COLORTABLE_EXPORT LyrColorLookupTable : public LyrObject {
public:
    class Section;

    /** A table from -1 to 1: a rainbow, violet below and pink above. */
    LyrColorLookupTable();
    LyrColorLookupTable(const LyrColorLookupTable& other);
    LyrColorLookupTable& operator=(const LyrColorLookupTable& other);
    ~LyrColorLookupTable() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    /** Colours one value. A value on a boundary belongs to the section below it; on the first boundary, to the section
     * above. False if the table is not valid or the section cannot colour the value. */
    bool getColor(float value, LyrRGBA<float>& out) const;

    /** Colours `count` values, the last one first. False as soon as one fails: those above it are coloured then, those
     * below are untouched. */
    bool getColors(long long count, const float* values, LyrRGBA<float>* out) const;

    /** The generators: store the parameters on the table, then rebuild it in one undo step. The parameters are no part
     * of the step and stay when the rebuild is refused. False for a null table, a failed write, a step that finds no
     * memory (the table is as before) or refused parameters: all need finite numbers with from < to, the stepped ones
     * step > 0 and at most 1,000,000 boundaries.
     *
     *  One section of the scheme `type` from `from` to `to`. */
    static bool createSmooth(LyrObject* table, float from, float to, Lyrenum type);
    /** Equal steps near `step`, so that a whole number of them fits the range, each of one colour of the scheme. */
    static bool createStepped(LyrObject* table, float from, float to, float step, Lyrenum type);
    /** Angles in radians, clamped to [0, pi/2], whose cosines are equally spaced near the spacing that `step` gives at
     * `from`: zones of equal area on a sphere. */
    static bool createSphereSegmentStepped(LyrObject* table, float from, float to, float step, Lyrenum type);

    bool copyFrom(const LyrObject& other) override;
    bool iocCallback(Message& message) override;

    struct Private;

private:
    void build();

    std::unique_ptr<Private> d;
};
