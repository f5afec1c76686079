#include <lyr_core/LyrMetaClass.h>
#include <lys_core/LyqPresetDefaultHandler.h>
#include <lys_core/LyqPresetFolders.h>
#include <lys_core/LyqPresetNotifier.h>

#include <QCoreApplication>

namespace {

LyrString translated(const char* text) {
    return QCoreApplication::translate("LyqPresetHandler", text);
}

/** All that a reader says, a line each. */
LyrString textOf(const LyrObjectFile::Report& report) {
    LyrString text = report.message.isEmpty() ? LyrString() : report.message;
    for (const LyrString& warning : report.warnings) {
        text = text.isNull() ? warning : text + LyrString("\n") + warning;
    }
    return text;
}

}  // namespace

LyqPresetDefaultHandler::LyqPresetDefaultHandler(Lyrenum category, const LyrString& name)
    : LyqPresetHandler(category, name), mPlaces{{Lyr::InstalledPreset, {}, nullptr}, {Lyr::UserPreset, {}, nullptr}} {}

LyqPresetDefaultHandler::~LyqPresetDefaultHandler() = default;

const LyrMetaClass& LyqPresetDefaultHandler::metaClass() {
    static const LyrMetaClass meta("LyqPresetDefaultHandler", sizeof(LyqPresetDefaultHandler),
                                   &LyqPresetHandler::metaClass(), nullptr, "lys_core", 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyqPresetDefaultHandler::getMetaClass() const {
    return metaClass();
}

LyqPresetDefaultHandler::Place* LyqPresetDefaultHandler::placeOf(Lyrenum kind) {
    for (Place& place : mPlaces) {
        if (place.kind == kind) {
            return &place;
        }
    }
    return nullptr;
}

LyqPresetStore* LyqPresetDefaultHandler::store(Lyrenum kind) {
    Place* place = placeOf(kind);
    if (place && !place->store) {
        const bool isUsers = kind == Lyr::UserPreset;
        if (place->folder.empty()) {
            place->folder = isUsers ? LyqPresetFolders::user() : LyqPresetFolders::installed();
        }
        place->store = std::make_unique<LyqPresetStore>(place->folder, isUsers, mPresetClass);
    }
    return place ? place->store.get() : nullptr;
}

void LyqPresetDefaultHandler::setPresetFolder(Lyrenum kind, const std::string& folder) {
    if (Place* place = placeOf(kind)) {
        place->folder = folder;
        place->store.reset();
        Q_EMIT notifier().presetListChanged();
    }
}

void LyqPresetDefaultHandler::setPresetClass(const std::string& className) {
    mPresetClass = className;
    for (Place& place : mPlaces) {
        place.store.reset();
    }
}

bool LyqPresetDefaultHandler::refuseKind() {
    setMessage(translated(
        QT_TRANSLATE_NOOP("LyqPresetHandler", "Only presets of one's own can be changed; save under another name.")));
    return false;
}

bool LyqPresetDefaultHandler::getPresetList(LyrStringList& list, Lyrenum kind) {
    list.clear();
    LyqPresetStore* presets = store(kind);
    if (!presets) {
        return false;
    }
    LyrString message;
    for (const LyqPresetStore::Entry& entry : presets->list(&message)) {
        list.append(entry.name);
    }
    setMessage(message);
    return message.isNull();
}

LyrObjectPtr LyqPresetDefaultHandler::loadPreset(const LyrString& name, Lyrenum kind, LyrObjectFile::Report* report) {
    LyrObjectFile::Report own;
    LyrObjectFile::Report& used = report ? *report : own;
    LyqPresetStore* presets = store(kind);
    if (!presets) {
        setMessage(translated(QT_TRANSLATE_NOOP("LyqPresetHandler", "There is no preset \"%1\".")).arg(name));
        return {};
    }
    LyrObjectPtr preset = presets->load(name, used, Lyr::TransientScope);
    setMessage(textOf(used));
    if (preset) {
        preset->prepareRoles();
        for (const Lyrenum missing : used.missing) {
            preset->removeProperty(missing);
        }
    }
    return preset;
}

bool LyqPresetDefaultHandler::savePreset(const LyrObjectPtr& preset, const LyrString& name, Lyrenum kind) {
    if (kind != Lyr::UserPreset) {
        return refuseKind();
    }
    LyrString message;
    const bool done = preset && store(kind)->save(*preset, name, message, mayReplace());
    setMessage(message);
    return done;
}

bool LyqPresetDefaultHandler::appToPreset(const LyrString& name, Lyrenum kind) {
    const LyrObject* object = getApplicationObject();
    LyrClass* copy = object ? object->getMetaClass().clone(object) : nullptr;
    const LyrObjectPtr preset(dynamic_cast<LyrObject*>(copy));
    return preset && savePreset(preset, name, kind);
}

bool LyqPresetDefaultHandler::presetToApp(const LyrString& name, Lyrenum kind) {
    LyrObject* object = getApplicationObject();
    const LyrObjectPtr preset = object ? loadPreset(name, kind, nullptr) : LyrObjectPtr();
    return preset && object->getMetaClass().copy(object, preset.get());
}

LyrString LyqPresetDefaultHandler::getDescription() {
    return getName();
}

/** The current preset, the category's list and their listeners after one was renamed or removed. */
void LyqPresetDefaultHandler::follow(const LyrString& from, const LyrString& to) {
    if (getCurrentPresetKind() == Lyr::UserPreset && getCurrentPreset() == from) {
        const bool modified = isCurrentPresetModified();
        setCurrentPreset(to, to.isNull() ? Lyrenum(-1) : Lyrenum(Lyr::UserPreset));
        setCurrentPresetModified(modified);
    }
    Q_EMIT notifier().presetListChanged();
}

bool LyqPresetDefaultHandler::renamePreset(const LyrString& from, const LyrString& to) {
    LyrString message;
    LyqPresetStore& presets = *store(Lyr::UserPreset);
    const bool wasThere = presets.contains(from);
    const bool done = presets.rename(from, to, message);
    // The old name may be gone though that was not written down for good.
    if (done || (wasThere && !presets.contains(from))) {
        follow(from, to);
    }
    setMessage(message);
    return done;
}

bool LyqPresetDefaultHandler::removePreset(const LyrString& name) {
    LyrString message;
    LyqPresetStore& presets = *store(Lyr::UserPreset);
    const bool wasThere = presets.contains(name);
    const bool done = presets.remove(name, message);
    if (done || (wasThere && !presets.contains(name))) {
        follow(name, LyrString());
    }
    setMessage(message);
    return done;
}

bool LyqPresetDefaultHandler::importPreset(const std::string& path, bool replace, LyrString& name) {
    LyrString message;
    const bool done = store(Lyr::UserPreset)->importFile(path, replace, name, message);
    if (done) {
        Q_EMIT notifier().presetListChanged();
    }
    // Listeners that list the presets have messages of their own.
    setMessage(message);
    return done;
}

bool LyqPresetDefaultHandler::checkImport(const std::string& path, bool replace, LyrString& name) {
    LyrString message;
    const bool done = store(Lyr::UserPreset)->checkImport(path, replace, name, message);
    setMessage(message);
    return done;
}

bool LyqPresetDefaultHandler::isNameTaken() {
    return store(Lyr::UserPreset)->isNameTaken();
}

bool LyqPresetDefaultHandler::exportPreset(const LyrString& name, Lyrenum kind, const std::string& path) {
    LyqPresetStore* presets = store(kind);
    LyrString message =
        translated(QT_TRANSLATE_NOOP("LyqPresetHandler", "A built-in preset has no file; save it under a name first."));
    const bool done = presets && presets->exportFile(name, path, message);
    setMessage(done ? LyrString() : message);
    return done;
}
