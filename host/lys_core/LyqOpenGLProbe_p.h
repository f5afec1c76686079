#pragma once

#include <QString>

class QOpenGLContext;

/** Whether views can draw. They need the fixed functions of OpenGL, those of a compatibility profile. */
namespace LyqOpenGLProbe {

/** Why contexts of the default surface format cannot draw views; empty if they can. Asked once for each format. */
QString problem();

/** The same for a context that is current. */
QString problemOf(const QOpenGLContext& current);

}  // namespace LyqOpenGLProbe
