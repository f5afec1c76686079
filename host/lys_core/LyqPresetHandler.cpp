#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrUndoJournal.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqPresetHandler.h>
#include <lys_core/LyqPresetNotifier.h>

#include <QCoreApplication>

namespace {

LyrString translated(const char* text) {
    return QCoreApplication::translate("LyqPresetHandler", text);
}

/** Adds what a write does not record to the open step, so that undo restores the object whole. */
bool addSnapshots(LyrObject& object) {
    bool done = LyrUndoJournal::instance().addSnapshotOfUnknownData(object);
    // The name exists as a property only once it has been set; a preset may bring one.
    done = (object.getProperty(Lyr::NameTemplate) || object.setNameTemplate("")) && done;
    for (std::int64_t i = 0; i < object.getPropertyCount(); ++i) {
        LyrProperty& property = *object.getPropertyAt(i);
        if (property.isStored() && !property.isRecorded()) {
            done = LyrUndoJournal::instance().addSnapshot(property) && done;
        }
    }
    return done;
}

}  // namespace

LyqPresetNotifier::~LyqPresetNotifier() = default;

LyqPresetHandler::LyqPresetHandler(Lyrenum category, const LyrString& name)
    : mCategory(category), mName(name), mNotifier(std::make_unique<LyqPresetNotifier>()) {
    addProperty(Lyr::Object, &mApplicationObject);
}

LyqPresetHandler::~LyqPresetHandler() = default;

const LyrMetaClass& LyqPresetHandler::metaClass() {
    static const LyrMetaClass meta("LyqPresetHandler", sizeof(LyqPresetHandler), &LyrObject::metaClass(), nullptr,
                                   "lys_core", 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyqPresetHandler::getMetaClass() const {
    return metaClass();
}

bool LyqPresetHandler::copyFrom(const LyrObject&) {
    return failCopy();
}

LyrObject* LyqPresetHandler::getApplicationObject() const {
    return mApplicationObject.getTarget();
}

void LyqPresetHandler::setApplicationObject(LyrObject* object) {
    if (object == getApplicationObject()) {
        return;
    }
    mApplicationObject.setValue(LyrObjectLink(object, nullptr, -1));
    setCurrentPreset(LyrString(), -1);
    Q_EMIT mNotifier->applicationObjectChanged();
}

void LyqPresetHandler::setCurrentPreset(const LyrString& name, Lyrenum kind) {
    const bool differs = mCurrent != name || mCurrentKind != kind || mModified;
    mCurrent = name;
    mCurrentKind = kind;
    mModified = false;
    if (differs) {
        Q_EMIT mNotifier->currentPresetChanged();
    }
}

void LyqPresetHandler::setCurrentPresetModified(bool modified) {
    if (mModified != modified) {
        mModified = modified;
        Q_EMIT mNotifier->currentPresetChanged();
    }
}

bool LyqPresetHandler::listPresets(LyrStringList& list, Lyrenum kind) {
    mMessage = LyrString();
    return getPresetList(list, kind);
}

Lyrenum LyqPresetHandler::findPreset(const LyrString& name) {
    // A folder that cannot be read may hold one of this name: what is found after it is found with a message.
    LyrString problem;
    Lyrenum found(-1);
    for (const Lyrenum kind : {Lyr::UserPreset, Lyr::InstalledPreset, Lyr::DefaultPreset}) {
        LyrStringList names;
        if (!listPresets(names, kind) && problem.isNull()) {
            problem = mMessage;
        }
        if (names.contains(name)) {
            found = kind;
            break;
        }
    }
    mMessage = problem;
    return found;
}

bool LyqPresetHandler::applyPreset(const LyrString& name, Lyrenum kind) {
    mMessage = LyrString();
    const LyrObjectPtr self(getRefCount() > 0 ? this : nullptr);
    const LyrObjectPtr object(getApplicationObject());
    const bool wasModified = mModified;
    if (!object) {
        mMessage = translated(QT_TRANSLATE_NOOP("LyqPresetHandler",
                                                "Nothing is being edited that a preset could be "
                                                "applied to."));
        return false;
    }
    if (!applyInAction(name, kind, *object)) {
        setCurrentPresetModified(wasModified);
        if (mMessage.isNull()) {
            mMessage =
                translated(QT_TRANSLATE_NOOP("LyqPresetHandler", "The preset \"%1\" cannot be applied.")).arg(name);
        }
        return false;
    }
    setCurrentPreset(name, kind);
    return true;
}

bool LyqPresetHandler::applyInAction(const LyrString& name, Lyrenum kind, LyrObject& object) {
    const QString action = QCoreApplication::translate("LyqPresetHandler", "Apply preset \"%1\"");
    LyqApplication::UserActionScope scope(action.arg(static_cast<QString>(getPresetText(name, kind))));
    if (scope.isOpen() && addSnapshots(object) && presetToApp(name, kind)) {
        return scope.end();
    }
    scope.abort();
    return false;
}

bool LyqPresetHandler::savePresetAs(const LyrString& name, Lyrenum kind, bool replace) {
    mMessage = LyrString();
    if (!getApplicationObject()) {
        mMessage = translated(QT_TRANSLATE_NOOP("LyqPresetHandler", "Nothing is being edited that could be saved."));
        return false;
    }
    mMayReplace = replace;
    const bool done = appToPreset(name, kind);
    mMayReplace = true;
    if (!done) {
        if (mMessage.isNull()) {
            mMessage =
                translated(QT_TRANSLATE_NOOP("LyqPresetHandler", "The preset \"%1\" cannot be saved.")).arg(name);
        }
        return false;
    }
    setCurrentPreset(name, kind);
    Q_EMIT mNotifier->presetListChanged();
    return true;
}

LyrString LyqPresetHandler::getPresetText(const LyrString& name, Lyrenum) {
    return name;
}

QPixmap LyqPresetHandler::getPresetPixmap(const LyrString&, Lyrenum) {
    return {};
}

QWidget* LyqPresetHandler::createSaveDialogExtension() {
    return nullptr;
}

bool LyqPresetHandler::iocCallback(Message& message) {
    return LyrObject::iocCallback(message);
}
