#include <analysis/ToleranceChooser.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lys_core/LyqPresetHandler.h>
#include <lys_core/LyqPresetNotifier.h>
#include <lys_core/LyqPresetRegistry.h>

#include <QEvent>
#include <QSignalBlocker>

namespace {

constexpr int NAME_ROLE = Qt::UserRole;
constexpr int KIND_ROLE = Qt::UserRole + 1;
/** Characters that the closed box shows at least. */
constexpr int SHOWN = 22;

}  // namespace

ToleranceChooser::ToleranceChooser(QWidget* parent) : LyqComboBox(parent) {
    setObjectName("toleranceChooser");
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(SHOWN);
    connect(this, &QComboBox::activated, this, &ToleranceChooser::choose);
    refresh();
}

LyrColorLookupTable* ToleranceChooser::tolerance() const {
    return static_cast<LyrColorLookupTable*>(mTable.get());
}

/** Listens to the presets that the registry has now. */
void ToleranceChooser::follow() {
    LyqPresetHandler* const presets = LyqPresetRegistry::instance().findHandler(Lyr::ColorLookupTable);
    LyqPresetNotifier* const notifier = presets ? &presets->notifier() : nullptr;
    if (notifier == mNotifier) {
        return;
    }
    if (mNotifier) {
        mNotifier->disconnect(this);
    }
    mNotifier = notifier;
    if (notifier) {
        // A preset that is saved anew becomes the current one.
        connect(notifier, &LyqPresetNotifier::currentPresetChanged, this, &ToleranceChooser::refresh);
        connect(notifier, &LyqPresetNotifier::presetListChanged, this, &ToleranceChooser::refresh);
    }
}

void ToleranceChooser::refresh() {
    follow();
    mPresets.update();
    fill();
    take(mName, mKind);
}

void ToleranceChooser::fill() {
    const QSignalBlocker silence(this);
    clear();
    addItem(tr("The layer's own table"));
    setToolTip(tr("Which tolerance table judges the defects: pass, warn or fail by volume"));
    LyqPresetHandler* const presets = LyqPresetRegistry::instance().findHandler(Lyr::ColorLookupTable);
    bool wasOfVolumes = false;
    for (const TolerancePresets::Entry& entry : mPresets.entries()) {
        if (count() == 1 || wasOfVolumes != entry.isOfVolumes) {
            insertSeparator(count());
        }
        wasOfVolumes = entry.isOfVolumes;
        const QString text =
            presets ? static_cast<QString>(presets->getPresetText(entry.name, entry.kind)) : QString(entry.name);
        addItem(text.simplified());
        setItemData(count() - 1, QByteArray(entry.name.utf8()), NAME_ROLE);
        setItemData(count() - 1, int(entry.kind), KIND_ROLE);
        setItemData(count() - 1,
                    entry.isOfVolumes ? tr("Boundaries are volumes, in mm³.")
                                      : tr("Made for another quantity; its boundaries are read as mm³."),
                    Qt::ToolTipRole);
        if (entry.name == mName && entry.kind == mKind) {
            setCurrentIndex(count() - 1);
        }
    }
}

void ToleranceChooser::choose(int index) {
    const QVariant name = itemData(index, NAME_ROLE);
    take(name.isValid() ? LyrString(name.toByteArray().constData()) : LyrString(), itemData(index, KIND_ROLE).toInt());
}

void ToleranceChooser::take(const LyrString& name, Lyrenum kind) {
    LyrObjectPtr table;
    for (const TolerancePresets::Entry& entry : mPresets.entries()) {
        if (!name.isNull() && entry.name == name && entry.kind == kind) {
            table = entry.table;
        }
    }
    mName = table ? name : LyrString();
    mKind = table ? kind : Lyrenum(-1);
    if (table.get() != mTable.get()) {
        mTable = table;
        Q_EMIT toleranceChanged();
    }
}

void ToleranceChooser::showPopup() {
    refresh();
    LyqComboBox::showPopup();
}

void ToleranceChooser::changeEvent(QEvent* event) {
    LyqComboBox::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        fill();
    }
}
