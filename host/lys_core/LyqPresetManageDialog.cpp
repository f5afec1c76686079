#include <lys_core/LyqPresetDefaultHandler.h>
#include <lys_core/LyqPresetManageDialog.h>
#include <lys_core/LyqPresetNotifier.h>

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFontMetrics>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

constexpr int NAME_ROLE = Qt::UserRole;
constexpr int KIND_ROLE = Qt::UserRole + 1;
constexpr int PROBLEM_ROLE = Qt::UserRole + 2;

/** Size of the list, in characters and lines of its font. */
constexpr int LIST_CHARACTERS = 44;
constexpr int LIST_LINES = 22;

QString filterText() {
    return LyqPresetManageDialog::tr("Presets (*.json);;All files (*)");
}

}  // namespace

LyqPresetManageDialog::LyqPresetManageDialog(LyqPresetDefaultHandler* handler, QWidget* parent)
    : QDialog(parent), mHandler(handler) {
    const QString what = handler ? static_cast<QString>(handler->describe()) : QString();
    setWindowTitle(what.isEmpty() ? tr("Manage presets") : tr("Manage presets - %1").arg(what));
    buildForm();
    if (handler) {
        connect(&handler->notifier(), &QObject::destroyed, this, [this] {
            mHandler = nullptr;
            mList->clear();
            reject();
        });
        connect(&handler->notifier(), &LyqPresetNotifier::presetListChanged, this, &LyqPresetManageDialog::fill);
    }
    fill();
}

LyqPresetManageDialog::~LyqPresetManageDialog() = default;

void LyqPresetManageDialog::buildForm() {
    auto* const layout = new QVBoxLayout(this);
    auto* const row = new QHBoxLayout;
    mList = new QTreeWidget;
    mList->setHeaderHidden(true);
    mList->setRootIsDecorated(false);
    mList->setAccessibleName(tr("Presets"));
    const QFontMetrics metrics(mList->font());
    mList->setMinimumSize(metrics.averageCharWidth() * LIST_CHARACTERS, metrics.lineSpacing() * LIST_LINES);
    row->addWidget(mList, 1);
    auto* const buttons = new QVBoxLayout;
    const auto add = [&](const QString& text, auto slot) {
        auto* const button = new QPushButton(text);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, slot);
        buttons->addWidget(button);
        return button;
    };
    mApply = add(tr("&Apply"), &LyqPresetManageDialog::applySelected);
    mRename = add(tr("&Rename..."), &LyqPresetManageDialog::askRename);
    mDelete = add(tr("&Delete..."), &LyqPresetManageDialog::askRemove);
    mImport = add(tr("&Import..."), &LyqPresetManageDialog::askImport);
    mExport = add(tr("&Export..."), &LyqPresetManageDialog::askExport);
    buttons->addStretch();
    row->addLayout(buttons);
    layout->addLayout(row, 1);
    mMessage = new QLabel;
    mMessage->setWordWrap(true);
    mMessage->setTextFormat(Qt::PlainText);
    mMessage->setTextInteractionFlags(Qt::TextSelectableByMouse);
    mMessage->hide();
    layout->addWidget(mMessage);
    auto* const box = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(box, &QDialogButtonBox::rejected, this, &LyqPresetManageDialog::reject);
    layout->addWidget(box);
    connect(mList, &QTreeWidget::itemSelectionChanged, this, &LyqPresetManageDialog::selectionChanged);
    connect(mList, &QTreeWidget::itemActivated, this, &LyqPresetManageDialog::applySelected);
}

void LyqPresetManageDialog::fill() {
    const QTreeWidgetItem* const before = selected();
    const LyrString name = nameOf(before);
    const Lyrenum kind = kindOf(before);
    mList->clear();
    mListProblem.clear();
    if (mHandler) {
        addKind(Lyr::UserPreset, tr("My presets"));
        addKind(Lyr::InstalledPreset, tr("Installed presets"));
        addKind(Lyr::DefaultPreset, tr("Built-in presets"));
    }
    mList->expandAll();
    select(name, kind);
    selectionChanged();
}

void LyqPresetManageDialog::addKind(Lyrenum kind, const QString& title) {
    auto* const group = new QTreeWidgetItem(mList, {title});
    group->setFlags(Qt::ItemIsEnabled);
    QFont font = mList->font();
    font.setBold(true);
    group->setFont(0, font);
    const auto add = [&](const LyrString& name, const LyrString& problem) {
        auto* const item =
            new QTreeWidgetItem(group, {static_cast<QString>(mHandler->getPresetText(name, kind)).simplified()});
        item->setData(0, NAME_ROLE, QByteArray(name.utf8()));
        item->setData(0, KIND_ROLE, int(kind));
        item->setData(0, PROBLEM_ROLE, static_cast<QString>(problem));
        if (!problem.isNull()) {
            item->setIcon(0, style()->standardIcon(QStyle::SP_MessageBoxWarning));
            item->setToolTip(0, static_cast<QString>(problem).toHtmlEscaped());
        }
    };
    if (const LyqPresetStore* const store = mHandler->store(kind)) {
        LyrString problem;
        for (const LyqPresetStore::Entry& entry : store->list(&problem)) {
            add(entry.name, entry.problem);
        }
        if (!problem.isNull()) {
            mListProblem = problem;
            group->setIcon(0, style()->standardIcon(QStyle::SP_MessageBoxWarning));
        }
        return;
    }
    LyrStringList names;
    mHandler->listPresets(names, kind);
    for (const LyrString& name : names) {
        add(name, LyrString());
    }
}

QTreeWidgetItem* LyqPresetManageDialog::selected() const {
    const QList<QTreeWidgetItem*> items = mList->selectedItems();
    return items.isEmpty() || !items.first()->parent() ? nullptr : items.first();
}

LyrString LyqPresetManageDialog::nameOf(const QTreeWidgetItem* item) {
    return item ? LyrString(item->data(0, NAME_ROLE).toByteArray().constData()) : LyrString();
}

Lyrenum LyqPresetManageDialog::kindOf(const QTreeWidgetItem* item) {
    return item ? Lyrenum(item->data(0, KIND_ROLE).toInt()) : Lyrenum(-1);
}

bool LyqPresetManageDialog::select(const LyrString& name, Lyrenum kind) {
    for (int i = 0; i < mList->topLevelItemCount(); ++i) {
        QTreeWidgetItem* const group = mList->topLevelItem(i);
        for (int k = 0; k < group->childCount(); ++k) {
            if (nameOf(group->child(k)) == name && kindOf(group->child(k)) == kind) {
                mList->setCurrentItem(group->child(k));
                return true;
            }
        }
    }
    return false;
}

QString LyqPresetManageDialog::message() const {
    return mMessage->text();
}

void LyqPresetManageDialog::showMessage(const QString& text) {
    mMessage->setText(text);
    mMessage->setVisible(!text.isEmpty());
}

void LyqPresetManageDialog::selectionChanged() {
    const QTreeWidgetItem* const item = selected();
    const QString problem = item ? item->data(0, PROBLEM_ROLE).toString() : QString();
    const Lyrenum kind = kindOf(item);
    mApply->setEnabled(item && mHandler && mHandler->getApplicationObject());
    mRename->setEnabled(kind == Lyr::UserPreset && problem.isEmpty());
    mDelete->setEnabled(kind == Lyr::UserPreset);
    mImport->setEnabled(mHandler != nullptr);
    mExport->setEnabled(item && kind != Lyr::DefaultPreset && problem.isEmpty());
    showMessage(problem.isEmpty() ? mListProblem : problem);
}

bool LyqPresetManageDialog::finish(bool done) {
    if (mHandler) {
        showMessage(mHandler->getMessage());
    }
    return done;
}

void LyqPresetManageDialog::applySelected() {
    const QTreeWidgetItem* const item = selected();
    if (item && mHandler && mHandler->getApplicationObject()) {
        finish(mHandler->applyPreset(nameOf(item), kindOf(item)));
    }
}

bool LyqPresetManageDialog::renameSelected(const QString& name) {
    const QTreeWidgetItem* const item = selected();
    const bool done =
        item && mHandler && kindOf(item) == Lyr::UserPreset && mHandler->renamePreset(nameOf(item), LyrString(name));
    if (done) {
        select(LyrString(name), Lyr::UserPreset);
    }
    return finish(done);
}

bool LyqPresetManageDialog::removeSelected() {
    const QTreeWidgetItem* const item = selected();
    return finish(item && mHandler && kindOf(item) == Lyr::UserPreset && mHandler->removePreset(nameOf(item)));
}

bool LyqPresetManageDialog::importFile(const QString& path) {
    LyrString name;
    const std::string file = QFile::encodeName(path).toStdString();
    if (mHandler->importPreset(file, false, name)) {
        showMessage(mHandler->getMessage());
        return true;
    }
    if (!mHandler->isNameTaken()) {
        showMessage(mHandler->getMessage());
        return false;
    }
    QMessageBox question(QMessageBox::Question, windowTitle(),
                         tr("Replace the preset \"%1\"?").arg(static_cast<QString>(name)), QMessageBox::Cancel, this);
    question.setTextFormat(Qt::PlainText);
    const QPushButton* const replace = question.addButton(tr("Replace"), QMessageBox::AcceptRole);
    question.exec();
    if (question.clickedButton() != replace || !mHandler) {
        return false;
    }
    const bool done = mHandler->importPreset(file, true, name);
    showMessage(mHandler->getMessage());
    return done;
}

bool LyqPresetManageDialog::importFiles(const QStringList& paths) {
    bool done = true;
    QStringList messages;
    for (const QString& path : paths) {
        showMessage({});
        const bool isIn = mHandler && importFile(path);
        if (!message().isEmpty()) {
            messages.append(message());
            done = done && isIn;
        }
    }
    showMessage(messages.join(QLatin1Char('\n')));
    return done;
}

bool LyqPresetManageDialog::exportSelected(const QString& path) {
    const QTreeWidgetItem* const item = selected();
    return finish(item && mHandler &&
                  mHandler->exportPreset(nameOf(item), kindOf(item), QFile::encodeName(path).toStdString()));
}

void LyqPresetManageDialog::askRename() {
    bool accepted = false;
    const QString before = nameOf(selected());
    const QString name =
        QInputDialog::getText(this, windowTitle(), tr("New name:"), QLineEdit::Normal, before, &accepted);
    if (accepted && name != before) {
        renameSelected(name.trimmed());
    }
}

void LyqPresetManageDialog::askRemove() {
    const QString name = nameOf(selected());
    QMessageBox question(QMessageBox::Question, windowTitle(),
                         tr("Delete the preset \"%1\"? This cannot be undone.").arg(name), QMessageBox::Cancel, this);
    question.setTextFormat(Qt::PlainText);
    const QPushButton* const confirm = question.addButton(tr("Delete"), QMessageBox::DestructiveRole);
    question.setDefaultButton(QMessageBox::Cancel);
    question.exec();
    if (question.clickedButton() == confirm) {
        removeSelected();
    }
}

void LyqPresetManageDialog::askImport() {
    importFiles(QFileDialog::getOpenFileNames(this, tr("Import presets"), QString(), filterText()));
}

void LyqPresetManageDialog::askExport() {
    const QString suggestion = static_cast<QString>(nameOf(selected())).replace(QLatin1Char('/'), QLatin1Char('_'));
    const QString path =
        QFileDialog::getSaveFileName(this, tr("Export preset"), suggestion + QStringLiteral(".json"), filterText());
    if (!path.isEmpty()) {
        exportSelected(path);
    }
}
