#include <lyr_core/LyrFileSaver.h>
#include <lyr_core/LyrObjectFile.h>
#include <lyr_core/LyrUndoJournal.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqPreferenceManager.h>
#include <lys_core/LyqSession.h>
#include <workbench/ContentFiles.h>
#include <workbench/DocumentChanges.h>

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>

namespace workbench {

namespace {

constexpr const char* FOLDER_KEY = "workbench/contentFolder";

QString folder() {
    return LyqPreferenceManager::instance().value(FOLDER_KEY, QDir::homePath()).toString();
}

void rememberFolder(const QString& file) {
    LyqPreferenceManager::instance().setValue(FOLDER_KEY, QFileInfo(file).absolutePath());
}

QString toQString(const LyrString& text) {
    return QString::fromUtf8(text.utf8());
}

/** Adds what a write would not record to the open step, so that undo brings back the object whole. */
bool addSnapshots(LyrObject& object) {
    bool done = true;
    for (std::int64_t i = 0; i < object.getPropertyCount(); ++i) {
        LyrProperty& property = *object.getPropertyAt(i);
        if (property.isStored() && !property.isRecorded()) {
            done = LyrUndoJournal::instance().addSnapshot(property) && done;
        }
    }
    return done;
}

}  // namespace

ContentFiles::ContentFiles(QWidget& window, QMenu& menu)
    : QObject(&window), mWindow(window), mMenu(menu), mChanges(new DocumentChanges(this)) {
    mMenu.addSeparator();
    mSaveAll = mMenu.addAction(tr("&Save Changes"), this, &ContentFiles::saveAll);
    mSaveAll->setObjectName("saveChanges");
    mSaveAll->setShortcut(QKeySequence::Save);
    mEnd = mMenu.addSeparator();
    connect(&LyqSession::instance(), &LyqSession::activeLayerChanged, this, &ContentFiles::rebuildMenu);
    connect(mChanges, &DocumentChanges::changed, this, &ContentFiles::refresh);
    rebuildMenu();
}

std::vector<LyqLayer::Content> ContentFiles::activeContents() const {
    const LyqLayer* layer = LyqSession::instance().activeLayer();
    return layer ? layer->contents() : std::vector<LyqLayer::Content>();
}

void ContentFiles::rebuildMenu() {
    for (QAction* entry : mEntries) {
        delete entry;
    }
    mEntries.clear();
    const std::vector<LyqLayer::Content> contents = activeContents();
    for (std::size_t i = 0; i < contents.size(); ++i) {
        auto* open = new QAction(tr("Open %1…").arg(contents[i].title), &mMenu);
        auto* save = new QAction(tr("Save %1…").arg(contents[i].title), &mMenu);
        open->setObjectName(QString("openContent%1").arg(i));
        save->setObjectName(QString("saveContent%1").arg(i));
        connect(open, &QAction::triggered, this, [this, i] { chooseAndOpen(i); });
        connect(save, &QAction::triggered, this, [this, i] { chooseAndSave(i); });
        mMenu.insertActions(mEnd, {open, save});
        mEntries.insert(mEntries.end(), {open, save});
    }
    refresh();
}

void ContentFiles::refresh() {
    mSaveAll->setEnabled(mChanges->isModified());
    mWindow.setWindowModified(mChanges->isModified());
}

bool ContentFiles::open(const LyqLayer::Content& content, const QString& file, QString& message) {
    LyrObjectFile::Report report;
    const LyrObjectPtr held(content.object);
    {
        LyqApplication::UserActionScope action(tr("Open %1").arg(content.title));
        const bool mayLoad = action.isOpen() && addSnapshots(*content.object);
        if (mayLoad && !LyrObjectFile::loadInto(QFile::encodeName(file).toStdString(), *content.object, report)) {
            action.abort();
            message = toQString(report.message);
            return false;
        }
        if (!mayLoad || !action.end()) {
            action.abort();
            message =
                tr("There is not enough memory to undo this later: nothing was changed. Close other programs and try "
                   "again.");
            return false;
        }
    }
    QStringList remarks = report.message.isEmpty() ? QStringList() : QStringList(toQString(report.message));
    for (const LyrString& warning : report.warnings) {
        remarks << toQString(warning);
    }
    message = remarks.join('\n');
    mChanges->setSaved(content.object, file);
    return true;
}

bool ContentFiles::save(const LyqLayer::Content& content, const QString& file, QString& message) {
    LyrObjectFile::Report report;
    const std::string path = QFile::encodeName(file).toStdString();
    LyrFileSaver::sweepBeside(path);
    if (!LyrObjectFile::save(*content.object, path, report)) {
        message = toQString(report.message);
        return false;
    }
    mChanges->setSaved(content.object, file);
    return true;
}

void ContentFiles::chooseAndOpen(std::size_t index) {
    const QString title = tr("Open %1").arg(activeContents().at(index).title);
    const QString file = QFileDialog::getOpenFileName(&mWindow, title, folder(), tr("Object files") + " (*.json)");
    // Another layer may be the active one after the dialog.
    const std::vector<LyqLayer::Content> contents = activeContents();
    if (file.isEmpty() || index >= contents.size()) {
        return;
    }
    rememberFolder(file);
    QString message;
    if (!open(contents[index], file, message) || !message.isEmpty()) {
        Q_EMIT failed(title, message);
    }
}

void ContentFiles::chooseAndSave(std::size_t index) {
    saveAs(activeContents().at(index), LyqSession::instance().activeLayer()->title());
}

/** Asks for a file and writes the content to it. False if it was not written. */
bool ContentFiles::saveAs(const LyqLayer::Content& content, const QString& owner) {
    const LyrObjectPtr held(content.object);
    const QString known = mChanges->file(content.object);
    const QString title = tr("Save %1 of \"%2\"").arg(content.title, owner);
    QString file = QFileDialog::getSaveFileName(&mWindow, title,
                                                known.isEmpty() ? QDir(folder()).filePath(content.fileName) : known,
                                                tr("Object files") + " (*.json)");
    if (file.isEmpty()) {
        return false;
    }
    rememberFolder(file);
    QString message;
    if (!save(content, file, message)) {
        Q_EMIT failed(title, message);
        return false;
    }
    return true;
}

std::vector<ContentFiles::Unsaved> ContentFiles::unsaved() const {
    std::vector<Unsaved> all;
    for (const LyqLayer* layer : LyqSession::instance().layers()) {
        for (const LyqLayer::Content& content : layer->contents()) {
            if (mChanges->isModified(content.object)) {
                all.push_back({content, layer->title(), LyrObjectPtr(content.object)});
            }
        }
    }
    return all;
}

bool ContentFiles::saveAll() {
    for (const Unsaved& one : unsaved()) {
        const QString file = mChanges->file(one.content.object);
        QString message;
        if (file.isEmpty() ? !saveAs(one.content, one.owner) : !save(one.content, file, message)) {
            if (!message.isEmpty()) {
                Q_EMIT failed(tr("Save %1 of \"%2\"").arg(one.content.title, one.owner), message);
            }
            return false;
        }
    }
    return true;
}

bool ContentFiles::mayClose() {
    const std::vector<Unsaved> changed = unsaved();
    if (changed.empty()) {
        return true;
    }
    QStringList names;
    for (const Unsaved& one : changed) {
        names << tr("%1 of \"%2\"").arg(one.content.title, one.owner);
    }
    QMessageBox box(QMessageBox::Question, tr("Unsaved Changes"),
                    tr("There are changes that have not been saved:\n\n%1").arg(names.join('\n')),
                    QMessageBox::NoButton, &mWindow);
    box.setObjectName("unsavedChanges");
    box.setTextFormat(Qt::PlainText);
    QPushButton* save = box.addButton(tr("&Save"), QMessageBox::AcceptRole);
    QPushButton* discard = box.addButton(tr("&Discard"), QMessageBox::DestructiveRole);
    QPushButton* cancel = box.addButton(tr("&Cancel"), QMessageBox::RejectRole);
    save->setObjectName("save");
    discard->setObjectName("discard");
    cancel->setObjectName("cancel");
    box.setDefaultButton(save);
    box.setEscapeButton(cancel);
    box.exec();
    return box.clickedButton() == discard || (box.clickedButton() == save && saveAll());
}

}  // namespace workbench
