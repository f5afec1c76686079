#include <colortable/ColortableIdentifiers.h>
#include <colortable/editor/CreateDialogForm_p.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrQuantity.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LyqMessageBox.h>
#include <lys_core/LyqSpinBox.h>

#include <QDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

#include <limits>
#include <utility>

namespace lys::editor {

namespace {

constexpr int DECIMALS = 5;
constexpr float LARGEST = std::numeric_limits<float>::max();

}  // namespace

void prepareDialog(QDialog& dialog, const char* name, bool modal, unsigned int) {
    dialog.setObjectName(QString::fromUtf8(name));
    dialog.setModal(modal);
}

void layOutForm(QDialog& dialog, QLabel* heading, const FormRows& rows, QPushButton* ok, QPushButton* cancel) {
    auto* grid = new QGridLayout(&dialog);
    grid->addWidget(heading, 0, 0, 1, 2);
    int row = 1;
    for (const auto& [label, widget] : rows) {
        label->setBuddy(widget);
        grid->addWidget(label, row, 0);
        grid->addWidget(widget, row++, 1);
    }
    grid->setColumnStretch(1, 1);
    grid->addItem(new QSpacerItem(0, 0, QSizePolicy::Minimum, QSizePolicy::Expanding), row++, 0);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    grid->addLayout(buttons, row, 0, 1, 2);
    ok->setDefault(true);
}

void prepareSpinBox(LyqSpinBox& box, Lyrenum quantity, double minimum) {
    box.setDecimals(DECIMALS);
    box.setQuantity(quantity);
    box.setRange(minimum, LARGEST);
}

void prepareAngleBox(LyqSpinBox& box, double degrees) {
    const Lyrenum degree("Degree", true);
    box.setDecimals(DECIMALS);
    box.setQuantity(Lyr::Angle);
    box.setUnit(degree);
    box.setRange(LyrQuantity::unitToInternal(0.0, Lyr::Angle, degree),
                 LyrQuantity::unitToInternal(90.0, Lyr::Angle, degree));
    box.setValue(LyrQuantity::unitToInternal(degrees, Lyr::Angle, degree));
}

float enteredValue(LyqSpinBox& box) {
    box.interpretText();
    return static_cast<float>(box.value());
}

RefusedNumbers::RefusedNumbers(QDialog& dialog, const QList<LyqSpinBox*>& boxes)
    : QObject(&dialog), mDialog(dialog), mBoxes(boxes) {
    for (LyqSpinBox* box : boxes) {
        connect(box, &LyqSpinBox::refused, this, [this, box](const QString& reason) {
            forget(box);
            mReasons.append({box, reason});
        });
        connect(box, &LyqSpinBox::valueChanged, this, [this, box] { forget(box); });
        connect(box->findChild<QLineEdit*>(), &QLineEdit::textEdited, this, [this, box] { forget(box); });
    }
}

void RefusedNumbers::forget(const LyqSpinBox* box) {
    mReasons.removeIf([box](const auto& entry) { return entry.first == box; });
}

bool RefusedNumbers::tell(const QString& caption) {
    for (LyqSpinBox* box : mBoxes) {
        box->interpretText();
    }
    if (mReasons.isEmpty()) {
        return false;
    }
    const QPointer<LyqSpinBox> box = mReasons.first().first;
    QStringList reasons;
    for (const auto& entry : std::exchange(mReasons, {})) {
        reasons.append(entry.second);
    }
    LyqMessageBox::warning(&mDialog, caption, reasons.join(QLatin1Char('\n')));
    if (box) {
        box->setFocus();
        box->selectAll();
    }
    return true;
}

Lyrenum schemeOf(int index) {
    return index == 1 ? Lyr::InvertedRainbow : index == 2 ? Lyr::HueCycle : Lyr::Rainbow;
}

int indexOfScheme(Lyrenum scheme) {
    return scheme == Lyr::Rainbow ? 0 : scheme == Lyr::InvertedRainbow ? 1 : scheme == Lyr::HueCycle ? 2 : -1;
}

Lyrenum quantityOf(const LyrObject* table) {
    return lyrGetValue(table, Lyr::Quantity, Lyr::Length);
}

void limitToMaximumRange(LyqSpinBox& box, const LyrObject* table) {
    const auto range = lyrGetValue(table, Lyr::MaximumRange, LyrValuePair<float>{-LARGEST, LARGEST});
    box.setRange(range.first, range.second);
}

}  // namespace lys::editor
