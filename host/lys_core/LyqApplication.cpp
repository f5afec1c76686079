#include <lyr_core/LyrModuleLoader.h>
#include <lyr_core/LyrUndoJournal.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqUndoCommand_p.h>

#include <QCoreApplication>
#include <QEvent>
#include <QUndoStack>

namespace {

LyrString toHostString(const QString& text) { return LyrString::fromUtf8(text.toUtf8().constData()); }

constexpr int NO_GESTURE = -1;

}  // namespace

struct LyqApplication::Private : LyrUndoJournal::Sink, LyrModuleLoader::UnloadGuard {
    void stepFinished(std::unique_ptr<LyrUndoStep> step) override {
        history.push(new LyqUndoCommand(std::move(step), gesture));
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
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QCoreApplication::sendPostedEvents();
        }
    }

    bool holdsObjectsOf(const char* module) const {
        for (int i = 0; i < history.count(); ++i) {
            const auto* command = dynamic_cast<const LyqUndoCommand*>(history.command(i));
            if (command && command->step().holdsObjectsOf(module)) {
                return true;
            }
        }
        return false;
    }

    QUndoStack history;
    int gesture = NO_GESTURE;
    int lastGesture = 0;
};

LyqApplication::LyqApplication() : d(new Private) {
    LyrUndoJournal::instance().setSink(d.get());
    LyrModuleLoader::addUnloadGuard(d.get());
}

LyqApplication::~LyqApplication() {
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

LyqApplication::UserActionToken LyqApplication::userActionBegin(const QString& name) {
    return LyrUndoJournal::instance().begin(toHostString(name));
}

bool LyqApplication::userActionEnd(UserActionToken token, const QString& name) {
    return LyrUndoJournal::instance().end(token, toHostString(name));
}

bool LyqApplication::userActionAborted(UserActionToken token) { return LyrUndoJournal::instance().abort(token); }

void LyqApplication::gestureBegin() { d->gesture = ++d->lastGesture; }

void LyqApplication::gestureEnd() { d->gesture = NO_GESTURE; }

QUndoStack& LyqApplication::undoStack() { return d->history; }

bool LyqApplication::undo() {
    if (LyrUndoJournal::instance().isOpen() || !d->history.canUndo()) {
        return false;
    }
    d->history.undo();
    return true;
}

bool LyqApplication::redo() {
    if (LyrUndoJournal::instance().isOpen() || !d->history.canRedo()) {
        return false;
    }
    d->history.redo();
    return true;
}

bool LyqApplication::historyHoldsObjectsOf(const char* module) const { return d->holdsObjectsOf(module); }

LyqApplication::UserActionScope::UserActionScope(const QString& name) : mToken(instance().userActionBegin(name)) {}

LyqApplication::UserActionScope::~UserActionScope() { instance().userActionEnd(mToken); }

void LyqApplication::UserActionScope::abort() {
    instance().userActionAborted(mToken);
    mToken = 0;
}
