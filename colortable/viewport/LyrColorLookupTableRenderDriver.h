#pragma once

#include <colortable/LysColortableExport.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrTimestamp.h>
#include <lyr_core/LyrValueList.h>
#include <lyr_core/LyrVector3.h>
#include <lyr_opengl/LyrRenderingDriver.h>

class LyqWorkspaceWidget;

namespace LyrSceneGraph {
class SceneGraphObjectNode;
class ViewportObjectNode;
}  // namespace LyrSceneGraph

/** Draws the legends of one view: asks the handlers of its render object which there are, places them, and draws the
 * image of each as a rectangle over the view. */
class LYS_COLORTABLE_EXPORT LyrColorLookupTableRenderDriver : public LyrRendering::Driver {
public:
    /** One legend of a view. */
    struct LYS_COLORTABLE_EXPORT Entry {
        LyrObjectPtr annotation;   ///< a LyqColorLookupTableAnnotation
        bool visible = false;      ///< true: placed and drawn; false: hidden
        LyrVector3<float> center;  ///< of the annotation's frame in widget pixels, z is 0.5; filled in by the driver

        /** The same annotation and visibility, and centres that differ by no more than rounding. */
        bool operator==(const Entry& other) const;
        bool operator!=(const Entry& other) const { return !(*this == other); }
    };

    /** @param node     the node to draw for; it owns the driver
     *  @param plugIn   not used: a driver does not talk back to its plug-in */
    LyrColorLookupTableRenderDriver(LyrSceneGraph::ViewportObjectNode* node, LyrObject* plugIn);
    ~LyrColorLookupTableRenderDriver() override;

    /** Updates and places the legends, unless the view is suppressed; asks for a redraw if anything changed. */
    bool init() override;
    void cleanup() override;
    /** What the visible legends cover in the overlay pass, with a margin of 0.01. */
    LyrRendering::DeviceRect getDeviceCoverageRect(long long pass) override;
    /** All of the view in the overlay pass while the node asks for an update. */
    LyrRendering::DeviceRect getDeviceUpdateRect(long long pass) override;
    /** Draws the legends in the overlay pass. False if a texture could not be made: the rest is not drawn. */
    bool renderObject(long long pass, void* context) override;

    /** True if a node, or one below it, stands for a rendered object of the class with this name or of one derived from
     * it. Nodes that are not rendered are passed over with all that is below them. */
    bool isObjectTypeRendered(const LyrSceneGraph::SceneGraphObjectNode& node, const char* className) const;

protected:
    /** Asks the handlers anew and places what they name. True if something that is seen changed since then. */
    bool updateAnnotationList(LyrTimestamp since);
    /** Places the annotations of the visible entries and hides the others. Always true. */
    bool updateEntryList(LyrValueList<Entry>& entries);
    /** From widget pixels of the view to device coordinates. */
    LyrVector3<float> widgetToDevice(const LyrVector3<float>& point) const;

private:
    LyrObjectPtr mContainer;
    LyrSceneGraph::ViewportObjectNode* mViewportNode;
    /** What was seen last, for comparison only: it may be gone. */
    const LyqWorkspaceWidget* mWorkspaceWidget = nullptr;
    LyrValueList<Entry> mEntries;
};
