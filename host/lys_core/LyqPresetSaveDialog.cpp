#include <lys_core/LyqPresetHandler.h>
#include <lys_core/LyqPresetNotifier.h>
#include <lys_core/LyqPresetSaveDialog.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

/** Characters that the form shows at least of a name. */
constexpr int NAME_CHARACTERS = 28;

}  // namespace

LyqPresetSaveDialog::LyqPresetSaveDialog(LyqPresetHandler* handler, QWidget* parent)
    : QDialog(parent), mHandler(handler) {
    const QString what = handler ? static_cast<QString>(handler->describe()) : QString();
    setWindowTitle(what.isEmpty() ? tr("Save preset") : tr("Save preset - %1").arg(what));
    buildForm();
    if (handler) {
        connect(&handler->notifier(), &QObject::destroyed, this, &LyqPresetSaveDialog::loseHandler);
        fillNames();
    }
    updateButtons();
}

LyqPresetSaveDialog::~LyqPresetSaveDialog() = default;

void LyqPresetSaveDialog::buildForm() {
    auto* const layout = new QVBoxLayout(this);
    auto* const form = new QFormLayout;
    mName = new QComboBox;
    mName->setEditable(true);
    mName->setInsertPolicy(QComboBox::NoInsert);
    mName->setMinimumContentsLength(NAME_CHARACTERS);
    mName->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    mName->setAccessibleName(tr("Name of the preset"));
    connect(mName, &QComboBox::editTextChanged, this, &LyqPresetSaveDialog::updateButtons);
    form->addRow(tr("&Name:"), mName);
    layout->addLayout(form);
    mExtension = mHandler ? mHandler->makeSaveDialogExtension() : nullptr;
    if (mExtension) {
        layout->addWidget(mExtension);
    }
    mMessage = new QLabel;
    mMessage->setWordWrap(true);
    mMessage->setTextFormat(Qt::PlainText);
    mMessage->setTextInteractionFlags(Qt::TextSelectableByMouse);
    mMessage->hide();
    layout->addWidget(mMessage);
    mButtons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
    connect(mButtons, &QDialogButtonBox::accepted, this, &LyqPresetSaveDialog::accept);
    connect(mButtons, &QDialogButtonBox::rejected, this, &LyqPresetSaveDialog::reject);
    layout->addWidget(mButtons);
}

void LyqPresetSaveDialog::fillNames() {
    LyrStringList names;
    if (!mHandler->listPresets(names, Lyr::UserPreset)) {
        showMessage(mHandler->getMessage());
    }
    for (const LyrString& name : names) {
        mName->addItem(name);
    }
    const bool isUsers = mHandler->getCurrentPresetKind() == Lyr::UserPreset;
    mName->setEditText(isUsers ? static_cast<QString>(mHandler->getCurrentPreset()) : QString());
    mName->lineEdit()->selectAll();
}

QString LyqPresetSaveDialog::presetName() const {
    // A preset that is there may begin or end with blanks; a new one does not.
    const QString typed = mName->currentText();
    const bool isThere = mName->findText(typed, Qt::MatchExactly | Qt::MatchCaseSensitive) >= 0;
    return isThere ? typed : typed.trimmed();
}

void LyqPresetSaveDialog::setPresetName(const QString& name) {
    mName->setEditText(name);
}

QWidget* LyqPresetSaveDialog::extension() const {
    return mExtension;
}

QString LyqPresetSaveDialog::message() const {
    return mMessage->text();
}

void LyqPresetSaveDialog::showMessage(const QString& text) {
    mMessage->setText(text);
    mMessage->setVisible(!text.isEmpty());
}

void LyqPresetSaveDialog::updateButtons() {
    mButtons->button(QDialogButtonBox::Save)->setEnabled(mHandler && !presetName().isEmpty());
}

bool LyqPresetSaveDialog::mayReplace(const QString& name) {
    QMessageBox question(QMessageBox::Question, windowTitle(), tr("Replace the preset \"%1\"?").arg(name),
                         QMessageBox::Cancel, this);
    question.setTextFormat(Qt::PlainText);
    const QPushButton* const replace = question.addButton(tr("Replace"), QMessageBox::AcceptRole);
    question.setDefaultButton(QMessageBox::Cancel);
    question.exec();
    return question.clickedButton() == replace;
}

void LyqPresetSaveDialog::accept() {
    const QString name = presetName();
    if (!mHandler || name.isEmpty()) {
        return;
    }
    bool done = mHandler->savePresetAs(LyrString(name), Lyr::UserPreset, false);
    if (!done && mHandler->isNameTaken()) {
        // While the question stands, the handler may go.
        if (!mayReplace(name) || !mHandler) {
            return;
        }
        done = mHandler->savePresetAs(LyrString(name));
    }
    if (!done) {
        showMessage(mHandler->getMessage());
        return;
    }
    QDialog::accept();
}

void LyqPresetSaveDialog::loseHandler() {
    mHandler = nullptr;
    delete mExtension;
    updateButtons();
    reject();
}
