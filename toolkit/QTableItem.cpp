#include <toolkit/QTableItem.h>

QTableItem::QTableItem(const QString& text) : QTableWidgetItem(text, UserType) {}

bool QTableItem::paint(QPainter&, const QPalette&, const QRect&, bool) {
    return false;
}
