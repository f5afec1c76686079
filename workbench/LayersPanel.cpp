#include <lyr_volume/LyrVolumeObject.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqSession.h>
#include <workbench/HistogramSlider.h>
#include <workbench/LayersPanel.h>
#include <workbench/LyrGreyLayer.h>

#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace workbench {

namespace {

/** Decimals that tell a thousandth of the window apart. */
int decimalsFor(double width) {
    return std::clamp(3 - static_cast<int>(std::floor(std::log10(std::max(width, 1e-9)))), 0, 9);
}

QDoubleSpinBox* makeNumber(QWidget* parent, const QString& name) {
    auto* box = new QDoubleSpinBox(parent);
    box->setObjectName(name);
    box->setRange(-3.0e38, 3.0e38);
    box->setKeyboardTracking(false);
    box->setMinimumWidth(box->fontMetrics().horizontalAdvance("-00000.000") + 24);
    box->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    return box;
}

}  // namespace

LayersPanel::LayersPanel(QWidget* parent)
    : QWidget(parent),
      mList(new QListWidget(this)),
      mOpacity(new QSlider(Qt::Horizontal, this)),
      mOpacityLabel(new QLabel(tr("&Opacity"), this)) {
    mWindow = buildWindow();
    mList->setObjectName("layerList");
    mList->setAccessibleName(tr("Layers"));
    mList->setSpacing(2);
    mList->setMinimumHeight(mList->fontMetrics().height() * 4);
    mList->setMaximumHeight(mList->fontMetrics().height() * 7);
    mOpacity->setObjectName("layerOpacity");
    mOpacity->setRange(0, 100);
    mOpacityLabel->setBuddy(mOpacity);
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    layout->addWidget(mList);
    auto* opacity = new QHBoxLayout;
    opacity->addWidget(mOpacityLabel);
    opacity->addWidget(mOpacity, 1);
    layout->addLayout(opacity);
    layout->addWidget(mWindow);
    layout->addStretch(1);
    mLayers.setListener(this);
    connect(mList, &QListWidget::itemChanged, this, &LayersPanel::itemChanged);
    connect(mList, &QListWidget::currentRowChanged, this, &LayersPanel::selectionChanged);
    connect(mOpacity, &QSlider::valueChanged, this, [this](int percent) {
        LyqLayer* layer = layerAt(mList->currentRow());
        if (layer && !mFilling) {
            layer->setOpacity(static_cast<float>(percent) / 100.0f);
        }
    });
    connect(&LyqSession::instance(), &LyqSession::layersChanged, this, &LayersPanel::rebuild);
    rebuild();
}

LayersPanel::~LayersPanel() = default;

QWidget* LayersPanel::buildWindow() {
    auto* group = new QGroupBox(tr("Gray window"), this);
    mHistogram = new HistogramSlider(group);
    mHistogram->setObjectName("histogram");
    mLow = makeNumber(group, "windowLow");
    mHigh = makeNumber(group, "windowHigh");
    auto* full = new QPushButton(tr("&Full range"), group);
    full->setObjectName("windowFull");
    auto* layout = new QVBoxLayout(group);
    layout->addWidget(mHistogram);
    auto* form = new QFormLayout;
    form->addRow(tr("&Black"), mLow);
    form->addRow(tr("&White"), mHigh);
    layout->addLayout(form);
    layout->addWidget(full, 0, Qt::AlignRight);
    connect(mHistogram, &HistogramSlider::windowDragged, this, &LayersPanel::setWindow);
    const auto typed = [this] { setWindow(mLow->value(), mHigh->value()); };
    connect(mLow, &QDoubleSpinBox::valueChanged, this, typed);
    connect(mHigh, &QDoubleSpinBox::valueChanged, this, typed);
    connect(full, &QPushButton::clicked, this, [this] {
        if (LyrGreyLayer* grey = greyLayer()) {
            const LyrVolume::ValueRange range = grey->document().volume()->valueRange();
            grey->setWindow(range.low, range.high);
        }
    });
    return group;
}

LyqLayer* LayersPanel::layerAt(int row) const {
    // The list shows the topmost layer first.
    const std::vector<LyqLayer*> layers = LyqSession::instance().layers();
    const int index = static_cast<int>(layers.size()) - 1 - row;
    return row >= 0 && index >= 0 ? layers[static_cast<std::size_t>(index)] : nullptr;
}

LyrGreyLayer* LayersPanel::greyLayer() const {
    for (LyqLayer* layer : LyqSession::instance().layers()) {
        if (auto* grey = dynamic_cast<LyrGreyLayer*>(layer)) {
            return grey;
        }
    }
    return nullptr;
}

void LayersPanel::rebuild() {
    const int row = std::max(mList->currentRow(), 0);
    mFilling = true;
    mList->clear();
    mLayers.clear();
    const std::vector<LyqLayer*> layers = LyqSession::instance().layers();
    for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer) {
        auto* item = new QListWidgetItem((*layer)->title(), mList);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        mLayers.append(*layer);
    }
    mList->setCurrentRow(std::min(row, mList->count() - 1));
    const LyrGreyLayer* grey = greyLayer();
    mHistogram->setVolume(grey ? grey->document().volume().get() : nullptr);
    mWindow->setEnabled(grey != nullptr);
    mFilling = false;
    refresh();
}

void LayersPanel::refresh() {
    mFilling = true;
    for (int row = 0; row < mList->count(); ++row) {
        if (const LyqLayer* layer = layerAt(row)) {
            mList->item(row)->setCheckState(layer->isRendering() ? Qt::Checked : Qt::Unchecked);
        }
    }
    const LyqLayer* current = layerAt(mList->currentRow());
    mOpacity->setEnabled(current != nullptr);
    mOpacity->setValue(current ? static_cast<int>(std::lround(current->getOpacity() * 100.0f)) : 100);
    if (const LyrGreyLayer* grey = greyLayer()) {
        const double low = static_cast<double>(grey->low());
        const double high = static_cast<double>(grey->high());
        mHistogram->setWindow(low, high);
        for (QDoubleSpinBox* box : {mLow, mHigh}) {
            const QSignalBlocker silent(box);
            box->setDecimals(decimalsFor(high - low));
            box->setSingleStep((high - low) / 50.0);
            box->setValue(box == mLow ? low : high);
        }
    }
    mFilling = false;
}

void LayersPanel::itemChanged(QListWidgetItem* item) {
    LyqLayer* layer = layerAt(mList->row(item));
    if (layer && !mFilling) {
        layer->setRendering(item->checkState() == Qt::Checked);
    }
}

void LayersPanel::selectionChanged() {
    if (LyqLayer* layer = layerAt(mList->currentRow()); layer && !mFilling) {
        LyqSession::instance().setActiveLayer(layer);
        refresh();
    }
}

void LayersPanel::setWindow(double low, double high) {
    LyrGreyLayer* grey = greyLayer();
    if (grey && !mFilling && !grey->setWindow(static_cast<float>(low), static_cast<float>(high))) {
        refresh();  // black has to lie below white: what was typed is taken back
    }
}

bool LayersPanel::iocCallback(Message& message) {
    if (!mFilling) {
        refresh();
    }
    return LyrIOC::iocCallback(message);
}

}  // namespace workbench
