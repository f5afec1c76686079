#include <colortable/ColortableIdentifiers.h>
#include <colortable/editor/CreateDialogForm_p.h>
#include <colortable/editor/LyqColorLookupTableEditor.h>
#include <colortable/editor/LyqColorLookupTableEditor_p.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrQuantity.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqPresetComboBox.h>
#include <lys_core/LyqPresetRegistry.h>
#include <lys_core/LyrApplicationObject.h>

#include <QCheckBox>
#include <QCloseEvent>
#include <QGroupBox>
#include <QHeaderView>
#include <QHideEvent>
#include <QPaintEvent>
#include <QPointer>
#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>

#include <algorithm>
#include <vector>

namespace {

bool isLater(const LyrObject* object, LyrTimestamp time) {
    return object && object->getModificationTimestamp() > time;
}

/** Dialogs and menus of a widget, theirs included. */
std::vector<QPointer<QWidget>> windowsOf(const QWidget& widget) {
    std::vector<QPointer<QWidget>> windows;
    for (QWidget* child : widget.findChildren<QWidget*>()) {
        if (child->isWindow()) {
            windows.emplace_back(child);
        }
    }
    return windows;
}

/** A disabled widget disables its dialogs as well: a user could not even cancel one that is open. */
void keepWindowsEnabled(const QWidget& widget) {
    for (const QPointer<QWidget>& window : windowsOf(widget)) {
        if (window && !window->isEnabled() && !window->testAttribute(Qt::WA_ForceDisabled)) {
            window->setEnabled(true);
        }
    }
}

/** Rejects the dialogs and closes the menu that are open. */
void closeWindows(const QWidget& widget) {
    for (const QPointer<QWidget>& window : windowsOf(widget)) {
        if (window && window->isVisible()) {
            window->close();
        }
    }
}

bool isAnySectionLater(const LyrObject* table, LyrTimestamp time) {
    const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<LyrObjectLink>> sections(table, Lyr::SectionList);
    if (!sections) {
        return false;
    }
    const long long count = sections->getArraySize();
    const LyrObjectLink* links = sections->lockArrayPtr();
    const bool later =
        std::any_of(links, links + count, [time](const LyrObjectLink& link) { return isLater(link.getLink(), time); });
    sections->unlockArrayPtr(links);
    return later;
}

}  // namespace

LyqColorLookupTableEditor::LyqColorLookupTableEditor(QWidget* parent, const char* name, unsigned int)
    : LyqColorLookupTableEditorUI(parent, name), d(new Private(*this)) {
    auto* column = new QVBoxLayout(mLUTFrame);
    column->setContentsMargins(0, 0, 0, 0);
    d->colorBar = new LyqColorLookupTableWidget(mLUTFrame);
    column->addWidget(d->colorBar);
    lys::editor::prepareTable(*mSectionsTable);
    lys::editor::fitColumns(*mSectionsTable);
    mSectionsTable->verticalHeader()->installEventFilter(this);
    connectAll();
    mPresetComboBox->setHandlerId(Lyr::ColorLookupTable);
    // In the form for derived panels; this one does not offer them.
    for (QWidget* widget :
         std::initializer_list<QWidget*>{mCreateSphereSegmentSteppedPushButton, mAutoScalePushButton, mCustomCheckBox,
                                         mPresetGroupBox, mSpecialAction0PushButton}) {
        widget->hide();
    }
}

LyqColorLookupTableEditor::~LyqColorLookupTableEditor() = default;

void LyqColorLookupTableEditor::connectAll() {
    using Editor = LyqColorLookupTableEditor;
    connect(mAutoLabelCheckBox, &QCheckBox::clicked, this, &Editor::autoLabelToggledSlot);
    connect(mAutoScaleCheckBox, &QCheckBox::clicked, this, &Editor::autoScaleToggledSlot);
    connect(mSectionsTable, &QTable::valueChanged, this, &Editor::tableValueChangedSlot);
    connect(mSectionsTable, &QTable::doubleClicked, this, &Editor::tableDoubleClickedSlot);
    connect(mSectionsTable, &QTable::contextMenuRequested, this, &Editor::tableContextMenuRequestedSlot);
    connect(mCreateSmoothPushButton, &QPushButton::clicked, this, &Editor::createSmoothSlot);
    connect(mCreateSteppedPushButton, &QPushButton::clicked, this, &Editor::createSteppedSlot);
    connect(mCreateSphereSegmentSteppedPushButton, &QPushButton::clicked, this,
            &Editor::createSphereSegmentSteppedSlot);
    // A cell that was being edited is brought up to date afterwards.
    connect(mSectionsTable, &QTable::editorClosed, this, [this] { invalidate(); });
    connect(mSectionsTable, &QTable::keyPressedInReadOnlyCell, this,
            [this](int row, int col, Qt::KeyboardModifiers modifiers) {
                const QRect cell = mSectionsTable->visualRect(mSectionsTable->model()->index(row, col));
                const int quarter = cell.width() / 4;
                const int x = modifiers.testFlag(Qt::ShiftModifier) ? cell.right() - quarter : cell.left() + quarter;
                tableDoubleClickedSlot(row, col, Qt::LeftButton, QPoint(x, cell.center().y()));
            });
}

void LyqColorLookupTableEditor::setLogicObject(LyrObject* object) {
    const bool changed = !(d->table == object);
    if (changed) {
        mSectionsTable->cancelEdit();
    }
    d->table = object;
    d->colorBar->setColorTable(object);
    if (changed) {
        invalidate();
    }
    if (!object) {
        closeWindows(*this);
    }
    if (LyqPresetRegistry::Receiver* handler = LyqPresetRegistry::instance().find(mPresetComboBox->getHandlerId())) {
        handler->setCurrentObject(object);
    }
    update();
}

void LyqColorLookupTableEditor::invalidate() {
    d->lastSync = LyrTimestamp();
    update();
}

bool LyqColorLookupTableEditor::needsSync() const {
    return d->lastSync.isNull() || isLater(d->table.get(), d->lastSync) ||
           isAnySectionLater(d->table.get(), d->lastSync);
}

void LyqColorLookupTableEditor::sync() {
    if (d->locked || !needsSync()) {
        return;
    }
    doSync();
    doSync();
    d->lastSync = LyrTimestamp::getCurrentTimestamp();
}

void LyqColorLookupTableEditor::doSync() {
    const LyrObject* table = d->table.get();
    const Lyrenum quantity = lys::editor::quantityOf(table);
    d->converter.setQuantity(quantity);
    // Bounds are shown in the unit that the user chose, so the title names that one.
    const Lyrenum unit = table ? d->converter.getDisplayUnit() : Lyrenum(-1);
    mSectionsGroupBox->setTitle(
        unit == Lyrenum(-1) ? tr("Sections")
                            : tr("Sections [%1]").arg(QString::fromUtf8(LyrQuantity::getUnitName(unit).utf8())));
    mAutoLabelCheckBox->setChecked(lyrGetValue(table, Lyr::AutoLabel, Lyrenum(0)) == Lyrenum(1));
    mAutoScaleCheckBox->setChecked(lyrGetValue(table, Lyr::AutoScale, Lyrenum(0)) == Lyrenum(1));
    const auto content = lys::editor::TableContent::of(table);
    if (mSectionsTable->isEditing() && content.sectionCount() != mSectionsTable->numRows()) {
        // The row that is being edited may be another section now.
        mSectionsTable->cancelEdit();
    }
    setEnabled(content.isConsistent());
    if (content.isConsistent()) {
        lys::editor::prepareTable(*mSectionsTable);
        lys::editor::fillRows(*mSectionsTable, table, content, d->converter);
    }
}

void LyqColorLookupTableEditor::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
}

void LyqColorLookupTableEditor::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
}

void LyqColorLookupTableEditor::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
}

void LyqColorLookupTableEditor::paintEvent(QPaintEvent* event) {
    sync();
    QWidget::paintEvent(event);
}

void LyqColorLookupTableEditor::changeEvent(QEvent* event) {
    LyqColorLookupTableEditorUI::changeEvent(event);
    switch (event->type()) {
        case QEvent::LanguageChange:
        case QEvent::FontChange:
        case QEvent::StyleChange:
            lys::editor::fitColumns(*mSectionsTable);
            invalidate();
            break;
        case QEvent::LocaleChange:
            invalidate();
            break;
        case QEvent::EnabledChange:
            if (!isEnabled()) {
                keepWindowsEnabled(*this);
            }
            break;
        default:
            break;
    }
}

bool LyqColorLookupTableEditor::eventFilter(QObject*, QEvent*) {
    return false;
}

bool LyqColorLookupTableEditor::iocCallback(Message& message) {
    const bool unitsChanged =
        message.getInitialSender() == d->application.get() && message.getPropertyID() == Lyr::DisplayUnitList;
    const bool quantityChanged =
        message.getInitialSender() == d->table.get() && message.getPropertyID() == Lyr::Quantity;
    if (unitsChanged || quantityChanged) {
        d->lastSync = LyrTimestamp();
    }
    update();
    return LyrIOC::iocCallback(message);
}
