#include <lys_core/LyqComboBox.h>

#include <QSignalBlocker>
#include <QWheelEvent>

#include <algorithm>

LyqComboBox::LyqComboBox(QWidget* parent, const char* name) : QComboBox(parent) {
    setObjectName(QString::fromUtf8(name));
    setFocusPolicy(Qt::StrongFocus);
}

void LyqComboBox::setItems(const QStringList& fresh) {
    if (items() == fresh) {
        return;
    }
    const QSignalBlocker silent(this);
    const int index = std::max(0, currentIndex());
    clear();
    addItems(fresh);
    setCurrentIndex(std::min(index, count() - 1));
}

QStringList LyqComboBox::items() const {
    QStringList texts;
    for (int i = 0; i < count(); ++i) {
        texts.append(itemText(i));
    }
    return texts;
}

void LyqComboBox::setCurrentSilently(int index) {
    if (index != currentIndex()) {
        const QSignalBlocker silent(this);
        setCurrentIndex(index);
    }
}

void LyqComboBox::wheelEvent(QWheelEvent* event) {
    // A wheel that scrolls a panel must not change what happens to come under the mouse.
    if (hasFocus()) {
        QComboBox::wheelEvent(event);
    } else {
        event->ignore();
    }
}
