#pragma once

#include <lyr_core/Lyrenum.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LysCoreExport.h>

/** Offers the presets of one preset handler, which it knows by an identifier. */
class LYS_CORE_EXPORT LyqPresetComboBox : public LyqComboBox {
    Q_OBJECT
    /** The handler's identifier as a number, so that a form can set it; -1 for none. */
    Q_PROPERTY(int handlerId READ handlerIdNumber WRITE setHandlerIdNumber)

public:
    explicit LyqPresetComboBox(QWidget* parent = nullptr, const char* name = nullptr);

    Lyrenum getHandlerId() const { return mHandlerId; }
    void setHandlerId(Lyrenum id) { mHandlerId = id; }

private:
    int handlerIdNumber() const { return int(mHandlerId); }
    void setHandlerIdNumber(int id) { mHandlerId = Lyrenum(id); }

    Lyrenum mHandlerId{-1};
};
