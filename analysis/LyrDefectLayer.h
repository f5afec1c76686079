#pragma once

#include <analysis/DefectSurface.h>
#include <analysis/LyrResultLayer.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrSingleValueProperty.h>

#include <vector>

struct LyrDefect;
struct LyrDefectResult;
enum class LyrVerdict;

/** The defects of a part, coloured by their volumes: in slices, and as surfaces of their own.
 *
 *  Properties beside those of LyrColoredLayer: `MarkedDefect` (computed: the number of the defect that stands out, 0
 * for none), `ToleranceTable` (computed: owning link to the table that judges, to nothing where the layer's own does).
 */
class LYS_ANALYSIS_EXPORT LyrDefectLayer : public LyrResultLayer {
public:
    /** With a rainbow over the volumes that there are and a legend at the bottom. Null when memory ran out.
     *  @param document  what was analysed, not null
     *  @param result    not null
     *  @param surface   of the result */
    static LyrDefectLayer* create(LyrVolumeObject* document, std::shared_ptr<const LyrDefectResult> result,
                                  DefectSurface surface);

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    QString title() const override;
    const LyrDefectResult& result() const { return *mResult; }
    /** The same, for work in another thread. */
    const std::shared_ptr<const LyrDefectResult>& sharedResult() const { return mResult; }

    /** The defect at a place of the world (mm), null if none is there. */
    const LyrDefect* defectAt(const LyrVector3<float>& position) const;
    /** What the table that judges says of each defect; empty unless it is a tolerance table (ToleranceTable.h). */
    std::vector<LyrVerdict> verdicts() const;
    /** Has a copy of a table judge; null: the layer's own, as at first. */
    void setToleranceTable(const LyrColorLookupTable* table);
    const LyrColorLookupTable* judgingTable() const;
    /** The middle of a defect in the world, mm. */
    LyrVector3<float> centerOf(const LyrDefect& defect) const;

    std::uint32_t markedDefect() const;
    /** Has a defect stand out in every view; 0 for none. False for a number that no defect has. */
    bool setMarkedDefect(std::uint32_t number);

    std::shared_ptr<const LyrRendering::SurfaceMesh> mesh() const override;
    VertexValues vertexValues() const override;
    /** Draws an orange line around the marked defect. */
    void finishSlice(int axis, int index, std::span<const float> values, std::span<std::uint8_t> pixels) const override;
    /** The marked defect is white. */
    void finishMesh(std::span<std::uint8_t> colors) const override;
    LyrTimestamp getFinishTimestamp() const override;

private:
    LyrDefectLayer(LyrVolumeObject* document, std::shared_ptr<const LyrDefectResult> result, DefectSurface surface,
                   LyrColorLookupTable* table, LyrObject* settings);

    std::shared_ptr<const LyrDefectResult> mResult;
    DefectSurface mSurface;
    LyrSingleValueOP<LyrSingleValuePropertyIF<long long>> mMarked;
    LyrObjectHardLinkOP mTolerance;
    LyrTimestamp mMarkedAt;
};
