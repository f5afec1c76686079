#pragma once

#include <lys_core/LyqCameraWidget.h>

/** A 3D view: its camera is `SceneCamera`. The left button turns the scene, the middle one pans, the right one and the
 * wheel zoom, `r` shows everything from the first direction. */
class LYS_CORE_EXPORT LyqSceneWidget final : public LyqCameraWidget {
    Q_OBJECT

public:
    LyqSceneWidget();
    ~LyqSceneWidget() override;
    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;
    bool findPlace(const QPointF& position, LyrVector3<float>& place) override;

protected:
    void drawMarks() override;
    void leftDragged(const QPointF& position, const LyrVector2<float>& pixels) override;
    void wheelEvent(QWheelEvent* event) override;
};
