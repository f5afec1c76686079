#pragma once

#include <lyr_core/LyrRGBA.h>
#include <lyr_core/LyrVector3.h>
#include <lyr_opengl/LyrCameraTransform.h>
#include <lyr_opengl/LyrOpenglExport.h>

namespace LyrRendering {

/** The colour that stands for the slices across an axis (0, 1, 2) in all views. */
LYR_OPENGL_EXPORT LyrRGBA<float> planeColor(int axis);

/** Draws where the other two slice planes meet the slice: a vertical and a horizontal line, each in its plane's colour,
 * with a gap around the place where all three meet.
 *  @param thickness  of the lines, in widget pixels
 *  @param gap        half the gap's length, in widget pixels */
LYR_OPENGL_EXPORT void drawCrossHair(const LyrSceneGraph::CameraTransform& camera, const LyrVector3<float>& cross,
                                     int thickness, int gap);

/** Draws the edges of the scene's box and, in their colours, the borders of the three slices through a place, as far as
 * the scene does not hide them. */
LYR_OPENGL_EXPORT void drawSceneBox(const LyrSceneGraph::CameraTransform& camera, const LyrVector3<float>& min,
                                    const LyrVector3<float>& max, const LyrVector3<float>& cross, int thickness);

/** Draws the directions of the axes, each with its letter, into the lower left corner.
 *  @param length  of a direction that lies in the view's plane, in widget pixels */
LYR_OPENGL_EXPORT void drawAxes(const LyrSceneGraph::CameraTransform& camera, int length, int thickness);

}  // namespace LyrRendering
