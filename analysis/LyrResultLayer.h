#pragma once

#include <analysis/LyrColoredLayer.h>

/** The result of an analysis, in colour: values at some voxels, none (NaN) at all others, where what lies beneath the
 * layer shows through. */
class LYS_ANALYSIS_EXPORT LyrResultLayer : public LyrColoredLayer {
public:
    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    bool readout(const LyrVector3<float>& position, Readout& out) const override;
    void finishSlice(int axis, int index, std::span<const float> values, std::span<std::uint8_t> pixels) const override;
    /** A vertex without a value of its own takes that of the nearest voxel with one, at most two voxels away. */
    VertexValues vertexValues() const override;

protected:
    using LyrColoredLayer::LyrColoredLayer;
};
