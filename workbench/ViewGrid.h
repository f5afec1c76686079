#pragma once

#include <lyr_core/LyrVector3.h>

#include <QPoint>
#include <QWidget>

#include <array>
#include <vector>

class LyqCameraWidget;
class LyqSliceWidget;
class LyqSceneWidget;

namespace workbench {

/** Three slice views and a 3D view, two by two, each with a heading and, for slices, a scroll bar. One of them may fill
 * the whole place. */
class ViewGrid : public QWidget {
    Q_OBJECT

public:
    explicit ViewGrid(QWidget* parent = nullptr);
    ~ViewGrid() override;

    /** Across z, y and x, then the 3D view. */
    const std::vector<LyqCameraWidget*>& views() const { return mViews; }
    LyqSliceWidget* sliceView(int axis) const;
    LyqSceneWidget* sceneView() const { return mScene; }

    /** The view that fills the place, null if all are shown. */
    LyqCameraWidget* maximizedView() const { return mMaximized; }
    /** Null shows all. */
    void setMaximizedView(LyqCameraWidget* view);
    void resetViews();
    /** Does what is left to be drawn, so that a picture of the window is up to date. */
    void finishFrames();

Q_SIGNALS:
    void positionHovered(const LyrVector3<float>& position, bool inside);
    /** The left button was clicked at a place of a view. */
    void positionPicked(const LyrVector3<float>& position);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* addCell(LyqCameraWidget* view, const QString& title, const QColor& color);
    void addSliceView(int axis, const QString& title);
    void connectView(LyqCameraWidget* view);

    std::vector<LyqCameraWidget*> mViews;
    std::vector<QWidget*> mCells;
    std::array<LyqSliceWidget*, 3> mSlices{};
    LyqSceneWidget* mScene = nullptr;
    LyqCameraWidget* mMaximized = nullptr;
    QPoint mPressed;
};

}  // namespace workbench
