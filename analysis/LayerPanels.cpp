#include <analysis/LayerPanels_p.h>
#include <analysis/LyrColoredLayer.h>
#include <analysis/SectionInspector.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/editor/LyqColorLookupTableEditor.h>
#include <colortable/editor/LyqColorLookupTableOptionsWidget.h>
#include <colortable/legend/LyqColorLookupTableWidget.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrObjectPath.h>
#include <lys_core/LyqObjectEditorHandler.h>
#include <lys_core/LyqSession.h>

#include <QEvent>
#include <QGroupBox>
#include <QScrollBar>
#include <QVBoxLayout>

#include <limits>

LayerPanel::LayerPanel(QWidget* parent) : QScrollArea(parent), mLayer(this) {
    setFrameShape(NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    connect(&LyqSession::instance(), &LyqSession::activeLayerChanged, this, &LayerPanel::follow);
}

void LayerPanel::setContent(QWidget* content) {
    setWidget(content);
}

/** As wide as the content is, with room for the bar that scrolls it. */
QSize LayerPanel::sizeHint() const {
    const QSize content = widget() ? widget()->sizeHint() : QSize();
    return {content.width() + verticalScrollBar()->sizeHint().width(), content.height()};
}

void LayerPanel::follow() {
    auto* layer = dynamic_cast<LyrColoredLayer*>(LyqSession::instance().activeLayer());
    mLayer = layer;
    if (widget()) {
        widget()->setEnabled(layer != nullptr);
    }
    showLayer(layer);
}

bool LayerPanel::iocCallback(Message& message) {
    const Lyrenum property = message.getPropertyID();
    if (message.getInitialSender() == mLayer.get() &&
        (property == Lyr::ColorLookupTable || property == Lyr::ColorLookupTableRenderSettings)) {
        follow();
    }
    return LyrIOC::iocCallback(message);
}

ColorsPanel::ColorsPanel(QWidget* parent) : LayerPanel(parent) {
    auto* content = new QWidget;
    mInspector = new SectionInspector(content);
    mEditor = new LyqColorLookupTableEditor(content, "layerTableEditor");
    mInspector->watch(mEditor->mLUTFrame->findChild<LyqColorLookupTableWidget*>());
    mOptions = new LyqColorLookupTableOptionsWidget(content, "layerTableOptions");
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(mInspector);
    layout->addWidget(mEditor, 1);
    layout->addWidget(mOptions);
    // The presets wait in the form for whoever offers them; here a handler is there.
    mEditor->mPresetGroupBox->show();
    setContent(content);
    follow();
}

void ColorsPanel::showLayer(LyrColoredLayer* layer) {
    LyrColorLookupTable* table = layer ? layer->table() : nullptr;
    mInspector->setLayer(layer);
    mEditor->setLogicObject(table);
    mOptions->setTable(table);
    if (layer) {
        const LyrVolume::ValueRange range = layer->values()->valueRange();
        mOptions->setDataRange({range.low, range.high});
    } else {
        constexpr float NONE = std::numeric_limits<float>::quiet_NaN();
        mOptions->setDataRange({NONE, NONE});
    }
}

LegendPanel::LegendPanel(QWidget* parent)
    : LayerPanel(parent), mEditor(LyqObjectEditorHandler::create("LyqColorLookupTableRenderSettingsEditorWidget")) {
    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    if (mEditor) {
        layout->addWidget(mEditor->getWidget());
    }
    layout->addStretch(1);
    setContent(content);
    follow();
}

void LegendPanel::showLayer(LyrColoredLayer* layer) {
    LyrObject* settings = layer ? layer->renderSettings() : nullptr;
    LyrObjectPath path;
    if (mEditor && settings && path.append(LyrObjectLink(settings, nullptr, -1)) && mEditor->checkObjects(&path, 1)) {
        mEditor->setObjects(&path, 1);
    } else if (mEditor) {
        mEditor->setObjects(nullptr, 0);
    }
}
