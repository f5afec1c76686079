#pragma once

#include <lyr_core/LyrObjectIOCPtr.h>

#include <QWidget>

class LyqLayer;
class LyrGreyLayer;
class QListWidget;
class QListWidgetItem;
class QSlider;
class QLabel;
class QDoubleSpinBox;

namespace workbench {

class HistogramSlider;

/** The layers of the session with their switches and opacity, and the window of the grey one. */
class LayersPanel : public QWidget, public LyrIOC {
    Q_OBJECT

public:
    explicit LayersPanel(QWidget* parent = nullptr);
    ~LayersPanel() override;

    /** Layers change by other hands as well. */
    bool iocCallback(Message& message) override;

private:
    QWidget* buildWindow();
    void rebuild();
    void refresh();
    void itemChanged(QListWidgetItem* item);
    void selectionChanged();
    LyqLayer* layerAt(int row) const;
    LyrGreyLayer* greyLayer() const;
    void setWindow(double low, double high);

    QListWidget* mList;
    QSlider* mOpacity;
    QLabel* mOpacityLabel;
    QWidget* mWindow = nullptr;
    HistogramSlider* mHistogram = nullptr;
    QDoubleSpinBox* mLow = nullptr;
    QDoubleSpinBox* mHigh = nullptr;
    LyrObjectIOCPtrList mLayers;
    bool mFilling = false;
};

}  // namespace workbench
