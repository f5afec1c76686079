#include <lys_core/LyqMessageBox.h>

#include <QPointer>

LyqMessageBox::LyqMessageBox(Icon icon, const QString& caption, const QString& text, QWidget* parent)
    : QMessageBox(icon, caption, text, Ok, parent) {
    // A name of a file that looks like a tag is to be read as it is.
    setTextFormat(Qt::PlainText);
}

void LyqMessageBox::warning(QWidget* parent, const QString& caption, const QString& text) {
    // On the heap, guarded: the parent may go while the box is open, and takes it along.
    const QPointer<LyqMessageBox> box = new LyqMessageBox(Warning, caption, text, parent);
    box->exec();
    delete box.data();
}
