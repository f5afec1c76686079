#pragma once

#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrSingleValueProperty.h>
#include <lyr_core/LyrVector3.h>
#include <lys_core/LysCoreExport.h>

/** What the views of an application show together. Lengths are millimetres of the scene.
 *
 *  - `CrossPosition`: the point in which the three slice planes meet.
 *  - `SceneMin`, `SceneMax`: the corners of the box that holds the scene; for a volume the outer faces of its voxels.
 *  - `SceneStep`: the distance of two slices along each axis. Slice i lies between SceneMin + i * step and
 *    SceneMin + (i + 1) * step.
 *  - `LayerList`: the objects that every view renders, those of the future included, the first drawn first.
 *
 *  None of these is content: nothing of it is undone, and nothing marks a document as modified. */
class LYS_CORE_EXPORT LyrWorkspace : public LyrObject {
public:
    LyrWorkspace();

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    LyrVector3<float> getCrossPosition() const { return mCrossPosition.stored(); }
    /** Moves the cross, kept inside the scene's box. False, and nothing moved, for a position that is not finite. */
    bool setCrossPosition(const LyrVector3<float>& position);

    LyrVector3<float> getSceneMin() const { return mSceneMin.stored(); }
    LyrVector3<float> getSceneMax() const { return mSceneMax.stored(); }
    LyrVector3<float> getSceneStep() const { return mSceneStep.stored(); }
    /** Sets the box and the steps together and puts the cross into the middle slice of each axis. False, and nothing
     * set, for numbers that are not finite, a box without extent or steps that are not positive. */
    bool setScene(const LyrVector3<float>& min, const LyrVector3<float>& max, const LyrVector3<float>& step);
    bool isInScene(const LyrVector3<float>& position) const;

    /** How many slices an axis (0, 1, 2) has; at least 1. */
    int getSliceCount(int axis) const;
    /** The slice of an axis that holds a coordinate, the first or the last one beyond the box. */
    int getSliceIndex(int axis, float coordinate) const;
    /** The middle of a slice. */
    float getSlicePosition(int axis, int index) const;

    /** Adds a layer after those that are there. False for null and for one that is there already. */
    bool addLayer(LyrObject* layer);
    bool removeLayer(LyrObject* layer);
    const LyrLinkListOP& layers() const { return mLayers; }

private:
    using Vector = LyrSingleValueOP<LyrSingleValuePropertyIF<LyrVector3<float>>>;
    Vector mCrossPosition;
    Vector mSceneMin;
    Vector mSceneMax;
    Vector mSceneStep;
    LyrObjectHardLinkListOP mLayers;
};
