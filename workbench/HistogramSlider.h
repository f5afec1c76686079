#pragma once

#include <lyr_volume/LyrVolume.h>

#include <QWidget>

#include <vector>

namespace workbench {

/** A histogram with a window of values over it, whose two ends and whose middle can be dragged. */
class HistogramSlider : public QWidget {
    Q_OBJECT

public:
    explicit HistogramSlider(QWidget* parent = nullptr);

    /** Shows the histogram of a volume; null shows none. */
    void setVolume(const LyrVolume* volume);
    void setWindow(double low, double high);
    double low() const { return mLow; }
    double high() const { return mHigh; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /** The user dragged the window. */
    void windowDragged(double low, double high);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    enum class Grip { None, Low, High, Middle };

    QRectF plot() const;
    double toX(double value) const;
    double toValue(double x) const;
    Grip gripAt(double x) const;

    std::vector<double> mBars;  ///< heights, 0 to 1
    double mRangeLow = 0.0;
    double mRangeHigh = 1.0;
    double mLow = 0.0;
    double mHigh = 1.0;
    Grip mGrip = Grip::None;
    Grip mHot = Grip::None;
    double mPressedAt = 0.0;  ///< value under the mouse, less the window's low end
};

}  // namespace workbench
