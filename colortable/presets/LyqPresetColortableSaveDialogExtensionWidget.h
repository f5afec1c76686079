#pragma once

#include <colortable/LysColortableExport.h>

#include <QCheckBox>

class LyqPresetColortableHandler;

/** What the dialog that saves a preset asks for colour tables besides a name: whether the preset is absolute. The
 * handler has to outlive it; the dialog sees to that. */
class LYS_COLORTABLE_EXPORT LyqPresetColortableSaveDialogExtensionWidget : public QCheckBox {
    Q_OBJECT

public:
    /** Shows the handler's present mode. The handler may be null. */
    LyqPresetColortableSaveDialogExtensionWidget(LyqPresetColortableHandler* handler, QWidget* parent,
                                                 const char* name);

protected Q_SLOTS:
    /** Hands the state of the box to the handler. */
    void triggerHandler();

private:
    LyqPresetColortableHandler* mHandler;
};
