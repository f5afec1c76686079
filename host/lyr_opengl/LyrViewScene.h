#pragma once

#include <lyr_core/LyrRGBA.h>
#include <lyr_opengl/LyrCameraNode.h>
#include <lyr_opengl/LyrDeviceRect.h>
#include <lyr_opengl/LyrFrameContext.h>
#include <lyr_opengl/LyrViewportObjectNode.h>

#include <functional>
#include <memory>

namespace LyrSceneGraph {

/** The frames of one view: its nodes and drivers, kept in step with its camera's rendered objects, and when they are
 * prepared and drawn. Knows no widgets.
 *
 *  For each object in the camera's `RenderedObjectList` there is one viewport node, in the order of the list, and one
 * node in the tree below getSceneNode(), with a child for the object that it links by `Lyr::Object`. An object whose
 * `Lyr::Rendering` is off is neither prepared nor drawn.
 *
 *  A frame is prepare(), on the thread of the user interface and without a context, then, if that says so, draw() with
 * the context current. Objects may come and go inside of either, and the scene itself be destroyed inside of prepare():
 * what goes is destroyed when the frame ends, else at once. */
class LYR_OPENGL_EXPORT ViewScene {
public:
    /** The OpenGL context of a view. */
    class LYR_OPENGL_EXPORT Surface {
    public:
        virtual ~Surface();
        /** False if there is no context (yet). */
        virtual bool makeCurrent() = 0;
        virtual void doneCurrent() = 0;
    };

    /** What a preparation found. */
    struct Preparation {
        bool changed = false;   ///< an init() reported a change
        bool mustDraw = false;  ///< something has to be drawn anew
    };

    /** @param camera    kept alive by the scene
     *  @param listener  hears of the objects that rendered objects link by Lyr::Object; may be null */
    explicit ViewScene(LyrObject* camera, LyrIOC* listener = nullptr);
    ~ViewScene();
    ViewScene(const ViewScene&) = delete;
    ViewScene& operator=(const ViewScene&) = delete;

    /** Without a surface, as in the beginning, no drivers are made; taken away, those that are there are destroyed. The
     * surface is not owned. */
    void setSurface(Surface* surface);

    SceneGraphObjectNode* getSceneNode() const noexcept;
    CameraNode* getCameraNode() const noexcept;
    std::int64_t getViewportNodeCount() const noexcept;
    ViewportObjectNode* getViewportNode(std::int64_t index) const noexcept;

    /** Brings nodes and drivers into step with the camera's list and with the properties of its objects. To be called
     * when those change; prepare() does it too. */
    void synchronize();

    /** Has the next frame drawn whatever the drivers say. */
    void requestDraw() noexcept;
    /** Runs the init() of every driver. The time of a driver's update is taken before its init() and stored after it,
     * unless the camera is suppressed. */
    Preparation prepare();
    /** What the last preparation found to draw anew, in device coordinates. */
    LyrRendering::DeviceRect getUpdateRect() const noexcept;
    /** What the drivers cover in a pass, as of the last preparation, in device coordinates. Drivers that cover nothing
     * are drawn all the same. */
    LyrRendering::DeviceRect getCoverageRect(long long pass) const;

    /** Clears the view, draws all passes and clears the update flags. Drivers whose init() was not run yet, or failed,
     * are left out. The framebuffer's alpha is 1 throughout afterwards.
     *  @param marks  draws the view's own marks after the drivers of MARK_PASS; may be empty */
    void draw(const LyrRGBA<float>& background, const std::function<void()>& marks = {});

    /** The context, which is current, is about to be destroyed: drivers give up what they have in it. */
    void releaseContext();

private:
    struct State;
    std::shared_ptr<State> d;
};

}  // namespace LyrSceneGraph
