#pragma once

#include <lys_core/LysCoreExport.h>

#include <QObject>

/** Tells widgets of changes of a preset handler. It goes with its handler. */
class LYS_CORE_EXPORT LyqPresetNotifier : public QObject {
    Q_OBJECT

public:
    ~LyqPresetNotifier() override;

Q_SIGNALS:
    /** Another preset is the current one, or its modified marker changed. */
    void currentPresetChanged();
    /** A preset came, went or has another name. */
    void presetListChanged();
    /** The handler looks after another object. */
    void applicationObjectChanged();
};
