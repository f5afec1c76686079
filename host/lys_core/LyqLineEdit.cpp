#include <lys_core/LyqLineEdit.h>

#include <QSignalBlocker>

#include <algorithm>

LyqLineEdit::LyqLineEdit(QWidget* parent, const char* name) : QLineEdit(parent) {
    setObjectName(QString::fromUtf8(name));
}

void LyqLineEdit::showText(const QString& shown) {
    if (shown == text()) {
        return;
    }
    const QSignalBlocker silent(this);
    const int cursor = cursorPosition();
    setText(shown);
    setCursorPosition(std::min(cursor, static_cast<int>(shown.size())));
}
