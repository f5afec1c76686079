#pragma once

#include <lys_core/LyqCameraWidget.h>

/** A slice view: its camera is `SliceCamera`. Shows the slice through the workspace's cross across one axis, and where
 * the other two slices meet it.
 *
 *  The wheel and the arrow keys go to other slices, page up and down ten at a time, home and end to the first and the
 * last; the wheel with control and the right button zoom, the middle button pans, the left one sets the cross, `r`
 * shows everything. */
class LYS_CORE_EXPORT LyqSliceWidget final : public LyqCameraWidget {
    Q_OBJECT

public:
    /** Across z. */
    LyqSliceWidget();
    ~LyqSliceWidget() override;
    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    /** The axis that the slices lie across: 0 x, 1 y, 2 z. */
    int getSliceAxis() const;
    /** Another axis is refused. */
    bool setSliceAxis(int axis);

    int getSliceCount() const;
    /** From 0. */
    int getSliceIndex() const;
    /** Moves the workspace's cross into a slice; the first or last one for an index beyond. */
    void setSliceIndex(int index);
    bool findPlace(const QPointF& position, LyrVector3<float>& place) override;

Q_SIGNALS:
    /** For scroll bars: another slice is shown, or there are more or fewer of them. */
    void sliceChanged(int index, int count);

protected:
    void workspaceChanged(Lyrenum property) override;
    void drawMarks() override;
    void leftPressed(const QPointF& position) override;
    void leftDragged(const QPointF& position, const LyrVector2<float>& pixels) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void followCross();

    int mIndex = 0;
    int mCount = 1;
    int mWheel = 0;  ///< what is left of wheel turns smaller than a step, in eighths of a degree
};
