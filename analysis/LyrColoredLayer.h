#pragma once

#include <analysis/LysAnalysisExport.h>
#include <lyr_core/LyrTimestamp.h>
#include <lyr_opengl/LyrSurface.h>
#include <lyr_volume/LyrVolume.h>
#include <lys_core/LyqLayer.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

class LyrColorLookupTable;
class LyrVolumeObject;
class PartSurface;
class ValueOrder;

/** A layer whose values are coloured through a table: slices through the values, and the part's surface.
 *
 *  Properties beside those of LyqLayer: `ColorLookupTable` and `ColorLookupTableRenderSettings` (owning links to the
 *  table and to the look of its legend), `SurfaceValue` (computed: the grey value at which the surface lies, NaN before
 *  it is there), `HighlightedSection` (computed: the section of the table whose values stand out in every view, -1 for
 *  none). */
class LYS_ANALYSIS_EXPORT LyrColoredLayer : public LyqLayer {
public:
    ~LyrColoredLayer() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    bool isColored() const override { return true; }
    bool isComplete() const override;
    /** The table and the settings of its legend, as far as they are there. */
    std::vector<Content> contents() const override;
    /** The value under a place with the unit of its quantity, and its colour. */
    bool readout(const LyrVector3<float>& position, Readout& out) const override;

    /** The values, on the grid of the document's volume; not null. */
    const std::shared_ptr<const LyrVolume>& values() const;
    const LyrVolumeObject& document() const;
    /** Null if the link was taken away or leads to something else. */
    LyrColorLookupTable* table() const;
    LyrObject* renderSettings() const;
    const PartSurface& surface() const;
    /** The values in ascending order, which the first call begins to sort; not null. */
    const std::shared_ptr<ValueOrder>& valueOrder() const;

    /** The surface that scene views show, null while there is none: that of the part. */
    virtual std::shared_ptr<const LyrRendering::SurfaceMesh> mesh() const;
    /** Works out the values at some vertices of a mesh, from `first` on, as many as `out` has room for. It is called in
     * any thread, maybe after the layer is gone: it holds all that it reads. */
    using VertexValues =
        std::function<void(const LyrRendering::SurfaceMesh& mesh, std::size_t first, std::span<float> out)>;
    /** How the vertices of mesh() come to the values that they are coloured by: samples of the values, weighted
     * linearly. */
    virtual VertexValues vertexValues() const;
    /** The values at the vertices of a mesh, worked out at once. */
    void valuesOnMesh(const LyrRendering::SurfaceMesh& mesh, std::vector<float>& out) const;
    /** The values at the vertices of mesh(), which are worked out in the background; null until they are there. */
    std::shared_ptr<const std::vector<float>> surfaceValues() const;
    /** Changes the pixels (RGBA, 8 bits) of a slice after its values were coloured. */
    virtual void finishSlice(int axis, int index, std::span<const float> values, std::span<std::uint8_t> pixels) const;
    /** The same for the colours of the vertices. */
    virtual void finishMesh(std::span<std::uint8_t> colors) const;
    /** When what finishMesh() does became another. */
    virtual LyrTimestamp getFinishTimestamp() const;

    int highlightedSection() const;
    /** Has the values in a section of the table stand out, in every view; -1 for none. */
    void setHighlightedSection(int section);
    /** Dims the colours (RGBA, 8 bits) of values outside the highlighted section: pixels of slices let through what
     *  lies beneath, vertices of surfaces become nearly grey. Nothing while no section is highlighted. */
    void dimSlice(std::span<const float> values, std::span<std::uint8_t> pixels) const;
    void dimMesh(std::span<const float> values, std::span<std::uint8_t> colors) const;
    LyrTimestamp getHighlightTimestamp() const;

    /** When the table or one of its sections changed last, or another one was linked. */
    LyrTimestamp getTableTimestamp() const;
    /** The same for the settings of the legend. */
    LyrTimestamp getSettingsTimestamp() const;

protected:
    /** @param document  what is opened, not null
     *  @param values    on the document's grid, not null
     *  @param table     coloured through, not null
     *  @param settings  of the legend, not null */
    LyrColoredLayer(LyrVolumeObject* document, std::shared_ptr<const LyrVolume> values, LyrColorLookupTable* table,
                    LyrObject* settings);

    /** Begins to work out what scene views show. To be called once a layer is made, when mesh() and vertexValues() tell
     * those of its class. */
    void prepareSurface();

private:
    void surfaceCame();
    void takeValues(const std::shared_ptr<std::vector<float>>& values);
    struct Private;
    std::unique_ptr<Private> d;
};
