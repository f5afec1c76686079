#pragma once

#include <QMenu>

namespace workbench {

/** Chooses the units in which values are shown: a submenu for each quantity that has several. */
class UnitsMenu : public QMenu {
    Q_OBJECT

public:
    /** @param remembers  whether the choice is read from and kept in the preferences */
    UnitsMenu(bool remembers, QWidget* parent);

private:
    void build();
    void choose(int quantity, int unit);
    void chooseSystem(bool inches);
    void restore();
    void keep();

    bool mRemembers;
};

}  // namespace workbench
