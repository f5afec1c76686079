#pragma once

#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrValuePair.h>

namespace lys::eval {
struct SectionData;
}

/** Colours the values of one interval of a table. Its `Type` selects the rule; of the four lists of control points
 *  (position, value), one a channel, only the values of the first and last point are read. */
class LYS_COLORTABLE_EXPORT LyrColorLookupTable::Section : public LyrObject {
public:
    /** A constant section without points: transparent black. */
    Section();
    Section(const Section& other);
    Section& operator=(const Section& other);
    ~Section() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    /** Colours a value in the interval `range` = (low, high). `previous` and `next` are the neighbours in the table or
     * null. Values outside the interval get the colour of its nearer end, NaN that of its start. True when a colour was
     * written. Where low >= high, `out` stays as it was; a type without a rule, or one that continues a neighbour that
     * is not there, leaves (0, 0, 0, 0). */
    bool getColor(const LyrValuePair<float>& range, float value, LyrRGBA<float>& out, const Section* previous,
                  const Section* next) const;

    /** What evaluation needs of this section, read from its properties. */
    lys::eval::SectionData readData() const;

    bool copyFrom(const LyrObject& other) override;

private:
    struct Private;
    void build();

    std::unique_ptr<Private> d;
};
