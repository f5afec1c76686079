#pragma once

#include <lyr_core/Lyrenum.h>

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QPair>
#include <QString>

class LyqSpinBox;
class LyrObject;
class QDialog;
class QLabel;
class QPushButton;
class QWidget;

/** What the forms of the creation dialogs have in common. */
namespace lys::editor {

/** Names a widget of a form. */
template <class Widget>
Widget* named(Widget* widget, const QByteArray& name) {
    widget->setObjectName(QString::fromUtf8(name));
    return widget;
}

/** Window and behaviour of a dialog. The flags are numbers of the toolkit's 3.3 series, whose bits mean other things
 * now: every one stands for an ordinary dialog with a title. */
void prepareDialog(QDialog& dialog, const char* name, bool modal, unsigned int flags);

/** A form's rows from top to bottom: a label and the widget that it names, which gets the label's mnemonic. */
using FormRows = QList<QPair<QLabel*, QWidget*>>;

/** Lays out heading, rows and the two buttons. */
void layOutForm(QDialog& dialog, QLabel* heading, const FormRows& rows, QPushButton* ok, QPushButton* cancel);

/** Five decimals and the range of all floats from a lower limit on. */
void prepareSpinBox(LyqSpinBox& box, Lyrenum quantity, double minimum);

/** Five decimals, from 0 to 90 degrees. */
void prepareAngleBox(LyqSpinBox& box, double degrees);

/** What a box holds, text that is still being typed included. */
float enteredValue(LyqSpinBox& box);

/** Knows which fields of a dialog refused the number that was typed last, so that nothing is built with the old one
 * that came back in its place. A child of the dialog. */
class RefusedNumbers : public QObject {
public:
    RefusedNumbers(QDialog& dialog, const QList<LyqSpinBox*>& boxes);

    /** Takes what is still being typed. If a field refused its number and was not edited since, says why under a
     * caption, goes to the field and is true; next time it is forgotten. Dialog and this may be gone afterwards. */
    bool tell(const QString& caption);
    void forget() { mReasons.clear(); }

private:
    void forget(const LyqSpinBox* box);

    QDialog& mDialog;
    QList<LyqSpinBox*> mBoxes;
    QList<QPair<LyqSpinBox*, QString>> mReasons;
};

/** The colour schemes on offer, by their index; any other index is the first. */
Lyrenum schemeOf(int index);
/** -1 for a scheme that is not on offer. */
int indexOfScheme(Lyrenum scheme);

/** The table's quantity, the default one without a table. */
Lyrenum quantityOf(const LyrObject* table);
/** Makes the table's largest range the limits of a box. */
void limitToMaximumRange(LyqSpinBox& box, const LyrObject* table);

}  // namespace lys::editor
