#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrQuantity.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqPreferenceManager.h>
#include <lys_core/LyrApplicationObject.h>
#include <workbench/UnitsMenu.h>

#include <QActionGroup>

namespace workbench {

namespace {

constexpr const char* UNITS_KEY = "workbench/units";

QString toQString(const LyrString& text) {
    return QString::fromUtf8(text.utf8());
}

LyrDisplayUnits& units() {
    return LyqApplication::instance().displayUnits();
}

}  // namespace

UnitsMenu::UnitsMenu(bool remembers, QWidget* parent) : QMenu(tr("&Units"), parent), mRemembers(remembers) {
    setObjectName("units");
    restore();
    build();
}

void UnitsMenu::build() {
    addAction(tr("&Metric"), this, [this] { chooseSystem(false); })->setObjectName("metricUnits");
    addAction(tr("&Inches"), this, [this] { chooseSystem(true); })->setObjectName("inchUnits");
    addSeparator();
    for (const Lyrenum quantity : LyrQuantity::getQuantities()) {
        const std::vector<Lyrenum> choices = LyrQuantity::getUnits(quantity);
        if (choices.size() < 2) {
            continue;
        }
        QMenu* menu = addMenu(toQString(LyrQuantity::getQuantityName(quantity)));
        auto* group = new QActionGroup(menu);
        group->setExclusive(true);
        for (const Lyrenum unit : choices) {
            const QString text = QString("%1 (%2)").arg(toQString(LyrQuantity::getUnitName(unit)),
                                                        toQString(LyrQuantity::getUnitSymbol(unit)));
            QAction* action = menu->addAction(text);
            action->setObjectName("unit-" + QString::fromStdString(unit.getName()));
            action->setCheckable(true);
            action->setActionGroup(group);
            connect(action, &QAction::triggered, this, [this, quantity, unit] { choose(quantity, unit); });
            connect(menu, &QMenu::aboutToShow, action,
                    [action, quantity, unit] { action->setChecked(units().getDisplayUnit(quantity) == unit); });
        }
    }
}

void UnitsMenu::choose(int quantity, int unit) {
    units().setDisplayUnit(Lyrenum(quantity), Lyrenum(unit));
    keep();
}

void UnitsMenu::chooseSystem(bool inches) {
    units().setInchSystem(inches);
    keep();
}

/** Numbers of identifiers differ from process to process: names are kept. */
void UnitsMenu::keep() {
    if (!mRemembers) {
        return;
    }
    QStringList names;
    for (const Lyrenum quantity : LyrQuantity::getQuantities()) {
        if (LyrQuantity::getUnits(quantity).size() > 1) {
            names << QString::fromStdString(units().getDisplayUnit(quantity).getName());
        }
    }
    LyqPreferenceManager::instance().setValue(UNITS_KEY, names);
}

void UnitsMenu::restore() {
    if (!mRemembers) {
        return;
    }
    for (const QString& name : LyqPreferenceManager::instance().value(UNITS_KEY).toStringList()) {
        for (const Lyrenum quantity : LyrQuantity::getQuantities()) {
            for (const Lyrenum unit : LyrQuantity::getUnits(quantity)) {
                if (unit.getName() == name.toStdString()) {
                    units().setDisplayUnit(quantity, unit);
                }
            }
        }
    }
}

}  // namespace workbench
