#pragma once

#include <lyr_core/Lyrenum.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LysCoreExport.h>

#include <QPointer>

class LyqPresetHandler;
class LyqPresetNotifier;

/** Offers the presets of one preset handler, which it finds in the registry by an identifier: the user's, the installed
 * and the built-in ones, and below them saving and managing. Shows the current preset, with "*" behind a modified one.
 * A preset that is chosen is applied. */
class LYS_CORE_EXPORT LyqPresetComboBox : public LyqComboBox {
    Q_OBJECT
    /** The handler's identifier as a number, so that a form can set it; -1 for none. */
    Q_PROPERTY(int handlerId READ handlerIdNumber WRITE setHandlerIdNumber)

public:
    explicit LyqPresetComboBox(QWidget* parent = nullptr, const char* name = nullptr);
    ~LyqPresetComboBox() override;

    Lyrenum getHandlerId() const { return mHandlerId; }
    void setHandlerId(Lyrenum id);
    /** The handler of the identifier, null if the registry knows none. */
    LyqPresetHandler* handler() const;

    /** Fills the list anew: before it opens, and after every change that the handler tells of. */
    void refresh();
    void showPopup() override;

Q_SIGNALS:
    /** A preset could not be applied, or there is something to say about it. Where nobody listens, a message box says
     * it. */
    void messageEmitted(const QString& text);

private:
    int handlerIdNumber() const { return int(mHandlerId); }
    void setHandlerIdNumber(int id) { setHandlerId(Lyrenum(id)); }
    void follow();
    void addPresets(Lyrenum kind);
    void showCurrent();
    void choose(int index);
    void tell(const QString& text);

    Lyrenum mHandlerId{-1};
    QPointer<LyqPresetNotifier> mNotifier;
};
