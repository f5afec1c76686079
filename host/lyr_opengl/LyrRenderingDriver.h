#pragma once

#include <lyr_core/LyrClass.h>
#include <lyr_core/LyrTimestamp.h>
#include <lyr_opengl/LyrDeviceRect.h>
#include <lyr_opengl/LyrOpenglExport.h>

class LyrObject;

namespace LyrRendering {

/** The passes of a frame, in the order in which they are drawn. A node tells a driver the numbers (getOverlayPass()).
 */
inline constexpr long long SCENE_PASS = 1;    ///< what lies in the scene: surfaces, slices
inline constexpr long long MARK_PASS = 2;     ///< marks over the scene: the cross-hair
inline constexpr long long OVERLAY_PASS = 3;  ///< what stands over the view: legends

/** Draws for one node of a scene graph. Belongs to its node.
 *
 *  Before a frame the host calls init(), on the thread of the user interface and without an OpenGL context; a driver
 * that has to be drawn anew says so in its node's update flags. Then it asks for the rectangles of each pass: what is
 * to be drawn anew, and what is covered. Only if something is to be drawn anew, with the context current,
 * renderObject() is called for each pass, whatever the driver covers in it.
 *
 *  The time of the last update is kept by the host: it takes the time before init() and stores it afterwards, unless
 * the view was suppressed. A new driver was never updated (null). */
class LYR_OPENGL_EXPORT Driver : public LyrClass {
public:
    ~Driver() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    /** Prepares the next frame. False: the driver is not drawn in it. */
    virtual bool init();
    /** The view's OpenGL context, which is current, goes, or the driver does: frees what belongs to the context. init()
     * and renderObject() may follow with another context. Not called for a driver whose view never had a context. */
    virtual void cleanup();

    /** What the driver covers in a pass; nothing by default. */
    virtual DeviceRect getDeviceCoverageRect(long long pass);
    /** What has to be drawn anew in a pass; nothing by default. */
    virtual DeviceRect getDeviceUpdateRect(long long pass);

    virtual unsigned int getPreviewHint() const;
    virtual unsigned int getRequiredFeatures() const;
    virtual unsigned int getDriverFeatures() const;
    virtual void fillInstructionsHint(void* hint) const;
    virtual void installObject(LyrObject* object);
    virtual void uninstallObject(LyrObject* object);

    /** Draws one pass with the view's context current; `context` is a LyrRendering::FrameContext. False: something
     * could not be drawn, and all OpenGL state is as it was. */
    virtual bool renderObject(long long pass, void* context);
    /** The object under a place of the view, null if the driver has none there. */
    virtual LyrObject* selectObject(const LyrVector2<float>& devicePosition);

    /** When the driver was last updated; null if never. */
    LyrTimestamp getUpdateTimestamp() const noexcept { return mUpdated; }
    /** For the host, after init(). */
    void setUpdateTimestamp(LyrTimestamp time) noexcept { mUpdated = time; }

protected:
    Driver() = default;

private:
    LyrTimestamp mUpdated;
};

}  // namespace LyrRendering
