#include <lys_core/LyqPresetComboBox.h>
#include <lys_core/LyqPresetDefaultHandler.h>
#include <lys_core/LyqPresetManageDialog.h>
#include <lys_core/LyqPresetNotifier.h>
#include <lys_core/LyqPresetRegistry.h>
#include <lys_core/LyqPresetSaveDialog.h>

#include <QMessageBox>
#include <QMetaMethod>
#include <QSignalBlocker>
#include <QStyle>

namespace {

constexpr int KIND_ROLE = Qt::UserRole;
constexpr int NAME_ROLE = Qt::UserRole + 1;

/** What items that are no presets hold in place of a kind. */
constexpr int SAVE_ITEM = -2;
constexpr int MANAGE_ITEM = -3;
constexpr int PROBLEM_ITEM = -4;

}  // namespace

LyqPresetComboBox::LyqPresetComboBox(QWidget* parent, const char* name) : LyqComboBox(parent, name) {
    setPlaceholderText(tr("No preset"));
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(16);
    connect(this, &QComboBox::activated, this, &LyqPresetComboBox::choose);
}

LyqPresetComboBox::~LyqPresetComboBox() = default;

void LyqPresetComboBox::setHandlerId(Lyrenum id) {
    mHandlerId = id;
    refresh();
}

LyqPresetHandler* LyqPresetComboBox::handler() const {
    return LyqPresetRegistry::instance().findHandler(mHandlerId);
}

/** Listens to the handler that the registry has now. */
void LyqPresetComboBox::follow() {
    LyqPresetHandler* const present = handler();
    LyqPresetNotifier* const notifier = present ? &present->notifier() : nullptr;
    if (notifier == mNotifier) {
        return;
    }
    if (mNotifier) {
        mNotifier->disconnect(this);
    }
    mNotifier = notifier;
    if (notifier) {
        connect(notifier, &LyqPresetNotifier::currentPresetChanged, this, &LyqPresetComboBox::showCurrent);
        connect(notifier, &LyqPresetNotifier::applicationObjectChanged, this, &LyqPresetComboBox::refresh);
        connect(notifier, &LyqPresetNotifier::presetListChanged, this, &LyqPresetComboBox::refresh);
        connect(notifier, &QObject::destroyed, this, [this] { clear(); });
    }
}

void LyqPresetComboBox::addPresets(Lyrenum kind) {
    LyrStringList names;
    if (!handler()->listPresets(names, kind) && !handler()->getMessage().isNull()) {
        const QString problem = handler()->getMessage();
        addItem(style()->standardIcon(QStyle::SP_MessageBoxWarning), problem.simplified());
        setItemData(count() - 1, PROBLEM_ITEM, KIND_ROLE);
        setItemData(count() - 1, problem.toHtmlEscaped(), Qt::ToolTipRole);
    }
    if (count() > 0 && !names.isEmpty()) {
        insertSeparator(count());
    }
    for (const LyrString& name : names) {
        const QString text = handler()->getPresetText(name, kind);
        addItem(QIcon(handler()->getPresetPixmap(name, kind)), text.simplified());
        setItemData(count() - 1, int(kind), KIND_ROLE);
        setItemData(count() - 1, QByteArray(name.utf8()), NAME_ROLE);
        setItemData(count() - 1, text.toHtmlEscaped(), Qt::ToolTipRole);
    }
}

void LyqPresetComboBox::refresh() {
    const QSignalBlocker silence(this);
    follow();
    clear();
    if (!handler()) {
        return;
    }
    for (const Lyrenum kind : {Lyr::UserPreset, Lyr::InstalledPreset, Lyr::DefaultPreset}) {
        addPresets(kind);
    }
    insertSeparator(count());
    addItem(tr("Save preset..."));
    setItemData(count() - 1, SAVE_ITEM, KIND_ROLE);
    addItem(tr("Manage presets..."));
    setItemData(count() - 1, MANAGE_ITEM, KIND_ROLE);
    showCurrent();
}

void LyqPresetComboBox::showCurrent() {
    const QSignalBlocker silence(this);
    const LyqPresetHandler* const present = handler();
    int current = -1;
    for (int i = 0; present && i < count(); ++i) {
        const Lyrenum kind = itemData(i, KIND_ROLE).toInt();
        if (!itemData(i, NAME_ROLE).isValid()) {
            continue;
        }
        const LyrString name(itemData(i, NAME_ROLE).toByteArray().constData());
        const bool isCurrent = present->getCurrentPreset() == name && present->getCurrentPresetKind() == kind;
        const QString text = static_cast<QString>(handler()->getPresetText(name, kind)).simplified();
        setItemText(i, isCurrent && present->isCurrentPresetModified() ? text + QStringLiteral(" *") : text);
        current = isCurrent ? i : current;
    }
    setCurrentIndex(current);
}

void LyqPresetComboBox::showPopup() {
    refresh();
    LyqComboBox::showPopup();
}

void LyqPresetComboBox::choose(int index) {
    LyqPresetHandler* const present = handler();
    const Lyrenum kind = itemData(index, KIND_ROLE).toInt();
    const LyrString name(itemData(index, NAME_ROLE).toByteArray().constData());
    if (!present) {
        return;
    }
    if (kind == SAVE_ITEM) {
        LyqPresetSaveDialog(present, window()).exec();
    } else if (kind == PROBLEM_ITEM) {
        tell(itemText(index));
    } else if (kind == MANAGE_ITEM) {
        LyqPresetManageDialog(dynamic_cast<LyqPresetDefaultHandler*>(present), window()).exec();
    } else {
        present->applyPreset(name, kind);
        tell(present->getMessage());
    }
    refresh();
}

void LyqPresetComboBox::tell(const QString& text) {
    if (text.isEmpty()) {
        return;
    }
    if (isSignalConnected(QMetaMethod::fromSignal(&LyqPresetComboBox::messageEmitted))) {
        Q_EMIT messageEmitted(text);
        return;
    }
    QMessageBox box(QMessageBox::Warning, tr("Presets"), text, QMessageBox::Ok, window());
    box.setTextFormat(Qt::PlainText);
    box.exec();
}
