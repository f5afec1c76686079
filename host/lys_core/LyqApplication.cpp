#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrI18n.h>
#include <lyr_core/LyrModuleLoader.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrUndoJournal.h>
#include <lys_core/LyqAnnotation.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqSceneWidget.h>
#include <lys_core/LyqSliceWidget.h>
#include <lys_core/LyqUndoCommand_p.h>
#include <lys_core/LyrApplicationObject.h>
#include <lys_core/LyrWorkspace.h>

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QUndoStack>
#include <QWidget>

#include <utility>

namespace {

LyrString toHostString(const QString& text) {
    return LyrString::fromUtf8(text.toUtf8().constData());
}

/** The name of an action; false, and an error, when memory ran out. */
bool readName(const QString& text, LyrString& name) noexcept {
    try {
        name = toHostString(text);
        return true;
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return false;
    }
}

constexpr int NO_GESTURE = -1;

}  // namespace

struct LyqApplication::Private : LyrUndoJournal::Sink, LyrModuleLoader::UnloadGuard {
    bool stepFinished(std::unique_ptr<LyrUndoStep>& step) override {
        try {
            history.push(std::make_unique<LyqUndoCommand>(step, gesture).release());
        } catch (...) {
            LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
            if (step && step->undo()) {
                return false;
            }
            // A list is being read, or the stack itself threw and nobody can tell whether it has the step. Without it
            // the older ones would bring back something that never was.
            history.clear();
        }
        return true;
    }

    LyrString reasonToStay(const char* module) override {
        if (!holdsObjectsOf(module)) {
            return {};
        }
        return LyrString::fromUtf8("the undo history holds objects of it; clear the undo history first");
    }

    /** What is still queued for the module's objects must not arrive when its code is gone. */
    void aboutToUnload(const char*) override {
        if (QCoreApplication::instance()) {
            QCoreApplication::sendPostedEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QCoreApplication::sendPostedEvents();
        }
    }

    void moduleGoes(const char* module) override {
        if (holdsObjectsOf(module)) {
            history.clear();
        }
    }

    const LyqUndoCommand* commandAt(int index) const {
        return dynamic_cast<const LyqUndoCommand*>(history.command(index));
    }

    bool holdsObjectsOf(const char* module) const {
        for (int i = 0; i < history.count(); ++i) {
            const LyqUndoCommand* command = commandAt(i);
            if (command && command->step().holdsObjectsOf(module)) {
                return true;
            }
        }
        return false;
    }

    /** False while an action is open, and for a call from within an undo. */
    bool mayMove() const {
        const LyrUndoJournal& journal = LyrUndoJournal::instance();
        return !journal.isOpen() && !journal.isReplaying();
    }

    /** Texts of the host and its modules come from the toolkit's translators. */
    struct Translator : LyrI18n::Translator {
        LyrString translate(const char* context, const char* key, const char* comment, Lyrenum) const override {
            return toHostString(QCoreApplication::translate(context, key, comment));
        }
    };

    Translator translator;
    LyrObjectPtr object{new LyrApplicationObject};
    LyrObjectPtr workspace{new LyrWorkspace};
    QPointer<QWidget> mainWidget;
    QUndoStack history;
    int gesture = NO_GESTURE;
    int lastGesture = 0;
};

LyqApplication::LyqApplication() : d(new Private) {
    LyrUndoJournal::instance().setSink(d.get());
    LyrModuleLoader::addUnloadGuard(d.get());
    LyrI18n::setTranslator(&d->translator);
    lyrSetValue(d->object.get(), Lyr::Workspace, LyrObjectLink(d->workspace.get(), nullptr, -1));
    // Views and annotations are known by name from here on.
    LyqAnnotation::metaClass();
    LyqSliceWidget::metaClass();
    LyqSceneWidget::metaClass();
}

LyqApplication::~LyqApplication() {
    LyrI18n::setTranslator(nullptr);
    LyrModuleLoader::removeUnloadGuard(d.get());
    LyrUndoJournal::instance().setSink(nullptr);
}

LyqApplication& LyqApplication::instance() {
    // Before the application: what its destructor uses has to outlive it.
    LyrUndoJournal::instance();
    LyrModuleLoader::getLoadedModules();
    static LyqApplication application;
    return application;
}

LyrObject& LyqApplication::object() {
    return *d->object;
}

LyrWorkspace* LyqApplication::workspace() {
    return dynamic_cast<LyrWorkspace*>(lyrGetValue(d->object.get(), Lyr::Workspace, LyrObjectLink()).getLink());
}

QWidget* LyqApplication::mainWidget() const {
    return d->mainWidget;
}

void LyqApplication::setMainWidget(QWidget* widget) {
    d->mainWidget = widget;
}

LyrDisplayUnits& LyqApplication::displayUnits() {
    return static_cast<LyrApplicationObject&>(*d->object).displayUnits();
}

LyqApplication::UserActionToken LyqApplication::userActionBegin(const QString& name) {
    LyrString hostName;
    return readName(name, hostName) ? LyrUndoJournal::instance().begin(hostName) : 0;
}

bool LyqApplication::userActionEnd(UserActionToken token, const QString& name) {
    // An action whose name finds no memory ends all the same, with the name that it has.
    LyrString hostName;
    readName(name, hostName);
    return LyrUndoJournal::instance().end(token, hostName);
}

bool LyqApplication::userActionAborted(UserActionToken token) {
    return LyrUndoJournal::instance().abort(token);
}

int LyqApplication::gestureBegin() {
    d->gesture = ++d->lastGesture;
    return d->gesture;
}

void LyqApplication::gestureResume(int gesture) {
    d->gesture = gesture;
}

void LyqApplication::gestureEnd() {
    d->gesture = NO_GESTURE;
}

bool LyqApplication::gestureDrop(int gesture) {
    if (!d->mayMove() || !d->history.canUndo()) {
        return false;
    }
    const LyqUndoCommand* last = d->commandAt(d->history.index() - 1);
    if (!last || last->id() != gesture || gesture == NO_GESTURE) {
        return false;
    }
    // The stack hands out its commands as constants only.
    if (!const_cast<LyqUndoCommand*>(last)->drop()) {
        return false;
    }
    d->history.undo();
    return true;
}

QUndoStack& LyqApplication::undoStack() {
    return d->history;
}

bool LyqApplication::undo() {
    if (!d->mayMove() || !d->history.canUndo()) {
        return false;
    }
    const int index = d->history.index() - 1;
    d->history.undo();
    const LyqUndoCommand* command = d->history.index() == index ? d->commandAt(index) : nullptr;
    if (command && command->isDone()) {
        d->history.redo();  // the step could not be taken back: only the place in the history moves
        return false;
    }
    return true;
}

bool LyqApplication::redo() {
    if (!d->mayMove() || !d->history.canRedo()) {
        return false;
    }
    const int index = d->history.index();
    d->history.redo();
    const LyqUndoCommand* command = d->history.index() == index + 1 ? d->commandAt(index) : nullptr;
    if (command && !command->isDone()) {
        d->history.undo();
        return false;
    }
    return true;
}

bool LyqApplication::historyHoldsObjectsOf(const char* module) const {
    return d->holdsObjectsOf(module);
}

LyqApplication::UserActionScope::UserActionScope(const QString& name) : mToken(instance().userActionBegin(name)) {}

LyqApplication::UserActionScope::~UserActionScope() {
    instance().userActionEnd(mToken);
}

bool LyqApplication::UserActionScope::isOpen() const {
    return mToken != 0;
}

bool LyqApplication::UserActionScope::end() {
    return instance().userActionEnd(std::exchange(mToken, 0));
}

void LyqApplication::UserActionScope::abort() {
    instance().userActionAborted(mToken);
    mToken = 0;
}
