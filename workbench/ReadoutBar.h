#pragma once

#include <lyr_core/LyrVector3.h>

#include <QColor>
#include <QWidget>

class QLabel;

namespace workbench {

/** What lies under the mouse: position, voxel, and value and colour of the topmost layer that has something there. */
class ReadoutBar : public QWidget {
    Q_OBJECT

public:
    explicit ReadoutBar(QWidget* parent = nullptr);

    void show(const LyrVector3<float>& position);
    void clear();
    QString text() const;
    /** Invalid where no colour is shown. */
    QColor color() const { return mColor; }

private:
    QLabel* mPosition;
    QLabel* mValue;
    QLabel* mSwatch;
    QColor mColor;
};

}  // namespace workbench
