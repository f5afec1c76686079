#include <colortable/presets/LyqPresetColortableHandler.h>
#include <colortable/presets/LyqPresetColortableSaveDialogExtensionWidget.h>

LyqPresetColortableSaveDialogExtensionWidget::LyqPresetColortableSaveDialogExtensionWidget(
    LyqPresetColortableHandler* handler, QWidget* parent, const char* name)
    : QCheckBox(parent), mHandler(handler) {
    setObjectName(QString::fromUtf8(name));
    setText(tr("Absolute preset"));
    if (mHandler) {
        setChecked(mHandler->isAbsolutePreset());
    }
    // Clicks alone: a state that is set by code is not the user's choice.
    connect(this, &QCheckBox::clicked, this, &LyqPresetColortableSaveDialogExtensionWidget::triggerHandler);
}

void LyqPresetColortableSaveDialogExtensionWidget::triggerHandler() {
    if (mHandler) {
        mHandler->setAbsolutePreset(isChecked());
    }
}
