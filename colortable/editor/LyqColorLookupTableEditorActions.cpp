// The editing slots of LyqColorLookupTableEditor.
#include <colortable/ColortableIdentifiers.h>
#include <colortable/editor/LyqColorLookupTableEditor.h>
#include <colortable/editor/LyqColorLookupTableEditor_p.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqColorWidget.h>
#include <toolkit/QComboTableItem.h>

#include <QCheckBox>
#include <QColorDialog>
#include <QInputDialog>
#include <QMenu>
#include <QTimer>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <limits>

using lys::editor::TableContent;

namespace {

bool hasSameSections(const TableContent& a, const TableContent& b) {
    return std::equal(a.sections.begin(), a.sections.end(), b.sections.begin(), b.sections.end(),
                      [](const LyrObjectLink& x, const LyrObjectLink& y) { return x.getLink() == y.getLink(); });
}

}  // namespace

void LyqColorLookupTableEditor::autoLabelToggledSlot() {
    writeSwitch(Lyr::AutoLabel, mAutoLabelCheckBox->isChecked(), tr("Change auto-label settings"));
}

void LyqColorLookupTableEditor::autoScaleToggledSlot() {
    writeSwitch(Lyr::AutoScale, mAutoScaleCheckBox->isChecked(), tr("Change auto-scale settings"));
}

void LyqColorLookupTableEditor::writeSwitch(Lyrenum property, bool on, const QString& actionName) {
    if (d->table) {
        const LyqApplication::UserActionScope action(actionName);
        lyrSetValue(d->table.get(), property, Lyrenum(on ? 1 : 0));
    }
    update();
}

void LyqColorLookupTableEditor::tableValueChangedSlot(int row, int col) {
    if (!d->table) {
        return;
    }
    if (col == lys::editor::FROM || col == lys::editor::TO) {
        editBound(row, col);
    } else if (col == lys::editor::TYPE) {
        editType(row);
    }
    invalidate();
}

void LyqColorLookupTableEditor::editBound(int row, int col) {
    const LyrObjectPtr table(d->table.get());
    TableContent content = TableContent::of(table.get());
    const long long section = lys::editor::sectionOfRow(content.sectionCount(), row);
    const long long position = col == lys::editor::TO ? section : section - 1;
    if (!content.isConsistent() || !content.sectionAt(section) || position < 0 || position >= content.positionCount()) {
        return;
    }
    const QString text = mSectionsTable->text(row, col);
    d->converter.setQuantity(lyrGetValue(table.get(), Lyr::Quantity, Lyrenum(Lyr::Length)));
    // What is shown is rounded: left as it is, it must not take the place of the exact value.
    if (text == lys::editor::BoundTexts(table.get(), content, d->converter).at(position)) {
        return;
    }
    bool valid = false;
    const double value = d->converter.unitStringToInternal(text, &valid);
    if (!valid) {
        refuse(row, col, tr("\"%1\" is no number.").arg(text));
        return;
    }
    constexpr double LARGEST = std::numeric_limits<float>::max();
    const auto range = lys::editor::maximumRangeOf(table.get());
    if (std::abs(value) > LARGEST && std::abs(double(value < 0 ? range.first : range.second)) >= LARGEST) {
        refuse(row, col, tr("%1 is larger than any number that a boundary can have.").arg(text));
        return;
    }
    lys::editor::movePosition(content.positions, position, static_cast<float>(std::clamp(value, -LARGEST, LARGEST)),
                              range);
    const LyqApplication::UserActionScope action(tr("Change colorbar settings"));
    const WriteLock lock(*this);
    const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>> positions(table.get(), Lyr::PositionList);
    positions->initArray(0, content.positionCount() - 1, content.positions.data());
}

void LyqColorLookupTableEditor::editType(int row) {
    const LyrObjectPtr table(d->table.get());
    const TableContent content = TableContent::of(table.get());
    const LyrObjectPtr section(getSectionForRow(row));
    QTableItem* item = mSectionsTable->item(row, lys::editor::TYPE);
    if (!content.isConsistent() || !section || !item || item->rtti() != QTableItem::ComboTableItem) {
        return;
    }
    const int entry = static_cast<const QComboTableItem*>(item)->currentItem();
    const Lyrenum type = lys::editor::typeOfEntry(lys::editor::isBorderRow(content.sectionCount(), row), entry);
    if (type == Lyrenum(-1)) {
        return;
    }
    LyqApplication::UserActionScope action(tr("Change colorbar settings"));
    const WriteLock lock(*this);
    if (!lys::editor::changeType(*section, type)) {
        action.abort();
    }
}

void LyqColorLookupTableEditor::refuse(int row, int col, const QString& reason) {
    // The cell's editor closes now: the focus moves on, which would hide the text again.
    QTimer::singleShot(0, this, [this, row, col, reason] {
        const QRect cell = mSectionsTable->visualRect(mSectionsTable->model()->index(row, col));
        if (isVisible()) {
            QToolTip::showText(mSectionsTable->viewport()->mapToGlobal(cell.bottomLeft()), reason, mSectionsTable);
        }
    });
}

LyrObject* LyqColorLookupTableEditor::getSectionForRow(long long row) const {
    const TableContent content = TableContent::of(d->table.get());
    return content.sectionAt(lys::editor::sectionOfRow(content.sectionCount(), row));
}

void LyqColorLookupTableEditor::tableDoubleClickedSlot(int row, int col, int, const QPoint& position) {
    const LyrObjectPtr section(getSectionForRow(row));
    if (col != lys::editor::DETAIL || !section) {
        return;
    }
    const QGuardedPtr<QWidget> self = this;
    const LyrObjectPtr table(d->table.get());
    LyqApplication::UserActionScope action(tr("Change colorbar settings"));
    const Lyrenum type = lyrGetValue(section.get(), Lyr::Type, Lyrenum(-1));
    if (type == Lyr::Constant) {
        editColorPoint(*section, 0);
    } else if (type == Lyr::Continue) {
        if (editColorPoint(*section, 0)) {
            const WriteLock lock(*this);
            if (!lyrSetValue(section.get(), Lyr::Type, Lyrenum(Lyr::Constant))) {
                action.abort();
            }
        }
    } else if (type == Lyr::Gradient) {
        editColorPoint(*section, isLeftOfCentre(row, position) ? 0 : 1);
    } else if (type == Lyr::Rainbow || type == Lyr::InvertedRainbow || type == Lyr::HueCycle) {
        editOpacity(*section);
    }
    // A host may have deleted the editor while a dialog was open.
    if (self) {
        invalidate();
    }
}

bool LyqColorLookupTableEditor::isLeftOfCentre(int row, const QPoint& position) const {
    const QRect cell = mSectionsTable->visualRect(mSectionsTable->model()->index(row, lys::editor::DETAIL));
    return position.x() - cell.left() < cell.width() / 2;
}

bool LyqColorLookupTableEditor::isStillEdited(const LyrObject* table, const LyrObject* section) const {
    const TableContent content = TableContent::of(d->table.get());
    return d->table == table && std::any_of(content.sections.begin(), content.sections.end(),
                                            [section](const LyrObjectLink& link) { return link.getLink() == section; });
}

bool LyqColorLookupTableEditor::editColorPoint(LyrObject& section, long long index) {
    const LyrObject* table = d->table.get();
    const QGuardedPtr<QWidget> self = this;
    const QGuardedPtr<QColorDialog> dialog =
        new QColorDialog(LyqColorWidget::toQColor(lys::editor::colorPointOf(section, index)), this);
    dialog->setOption(QColorDialog::ShowAlphaChannel);
    const bool accepted = dialog->exec() == QDialog::Accepted && dialog;
    const QColor color = accepted ? dialog->selectedColor() : QColor();
    delete dialog.data();
    if (!self || !color.isValid() || !isStillEdited(table, &section)) {
        return false;
    }
    // Points that are missing are added here: a dialog that is cancelled changes nothing.
    const WriteLock lock(*this);
    return lys::editor::setColorPoint(section, index, LyqColorWidget::fromQColor(color));
}

void LyqColorLookupTableEditor::editOpacity(LyrObject& section) {
    const LyrObject* table = d->table.get();
    const QGuardedPtr<QWidget> self = this;
    bool accepted = false;
    const double opacity = QInputDialog::getDouble(this, tr("Set transparency"), tr("Alpha value"),
                                                   lys::editor::opacityOf(section), 0.0, 1.0, 2, &accepted);
    if (self && accepted && isStillEdited(table, &section)) {
        const WriteLock lock(*this);
        lys::editor::setOpacity(section, static_cast<float>(opacity));
    }
}

LyqColorLookupTableEditor::SectionRange LyqColorLookupTableEditor::getSelectedSections() const {
    const int count = mSectionsTable->numRows();
    int first = 0;
    while (first < count && !mSectionsTable->isRowSelected(first)) {
        ++first;
    }
    int end = first;
    while (end < count && mSectionsTable->isRowSelected(end)) {
        ++end;
    }
    for (int row = end; row < count; ++row) {
        if (mSectionsTable->isRowSelected(row)) {
            return SectionRange::EMPTY();
        }
    }
    const long long sections = TableContent::of(d->table.get()).sectionCount();
    return first == end
               ? SectionRange::EMPTY()
               : SectionRange(lys::editor::sectionOfRow(sections, end - 1), lys::editor::sectionOfRow(sections, first));
}

LyqColorLookupTableEditor::SectionRange LyqColorLookupTableEditor::getSelectedInternalSections() const {
    return getSelectedSections().intersect(SectionRange(1, TableContent::of(d->table.get()).sectionCount() - 2));
}

void LyqColorLookupTableEditor::tableContextMenuRequestedSlot(int row, int, const QPoint& globalPosition) {
    if (!getSectionForRow(row)) {
        return;
    }
    const LyrObjectPtr table(d->table.get());
    const TableContent content = TableContent::of(table.get());
    const SectionRange selected = getSelectedInternalSections();
    const QGuardedPtr<QMenu> menu = new QMenu(this);
    const QAction* split = menu->addAction(tr("split"));
    const QAction* merge = menu->addAction(tr("merge"));
    menu->actions()[0]->setEnabled(selected.getSize() == 1);
    menu->actions()[1]->setEnabled(selected.getSize() >= 2);
    const QAction* chosen = menu->exec(globalPosition);
    if (!menu) {
        return;
    }
    const bool splits = chosen == split;
    const bool merges = chosen == merge;
    delete menu.data();
    // Meanwhile the rows may have become other sections.
    if (!(d->table == table.get()) || !hasSameSections(TableContent::of(table.get()), content)) {
        return;
    }
    if (splits) {
        actionSplit(row);
    } else if (merges) {
        actionMerge(selected);
    }
}

void LyqColorLookupTableEditor::actionMerge(const SectionRange& sections) {
    if (const LyrObjectPtr table{d->table.get()}) {
        LyqApplication::UserActionScope action(tr("Change colorbar settings"));
        const WriteLock lock(*this);
        if (!lys::editor::mergeSections(*table, sections)) {
            action.abort();
        }
    }
    invalidate();
}

void LyqColorLookupTableEditor::actionSplit(long long row) {
    if (const LyrObjectPtr table{d->table.get()}) {
        LyqApplication::UserActionScope action(tr("Change colorbar settings"));
        const WriteLock lock(*this);
        const long long count = TableContent::of(table.get()).sectionCount();
        if (!lys::editor::splitSection(*table, lys::editor::sectionOfRow(count, row))) {
            action.abort();
        }
    }
    invalidate();
}
