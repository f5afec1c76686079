#pragma once

#include <lys_core/LysCoreExport.h>

#include <QObject>
#include <QString>

#include <cstdint>
#include <memory>

class LyrDisplayUnits;
class LyrObject;
class LyrWorkspace;
class QUndoStack;
class QWidget;

/** The application: its object in the host's graph, and user actions over the undo history. Made on first use; needs no
 * QApplication, so that programs without a display use it as well. To be used from the thread of the user interface. */
class LYS_CORE_EXPORT LyqApplication : public QObject {  // NOLINT(*-virtual-class-destructor): made by instance() alone
    Q_OBJECT

public:
    /** Names an open user action; 0 is none. */
    using UserActionToken = std::int64_t;

    class UserActionScope;
    class GestureScope;

    static LyqApplication& instance();

    /** The application as an object of the host's graph. */
    LyrObject& object();
    /** The holder of the display units: its property `DisplayUnitList` says in which units values are shown. */
    LyrDisplayUnits& displayUnits();

    /** What the views of the workspace show: the object that the application's property `Workspace` links. The
     * application brings one; null if that link was taken away or leads to something else. */
    LyrWorkspace* workspace();

    /** The window that owns widgets without a place of their own; null before there is one and after it is gone. */
    QWidget* mainWidget() const;
    void setMainWidget(QWidget* widget);

    /** Opens a user action; 0, and an error, without memory. The outermost is one undo step, inner ones its parts. */
    UserActionToken userActionBegin(const QString& name);
    /** Ends a user action. A name that is not empty replaces the step's name when the action is the outermost. An
     * action that recorded nothing leaves no step and keeps the redo history. False if the token names no open action;
     * false, and an error, if there is no memory for the step: what the action recorded has then been taken back. */
    bool userActionEnd(UserActionToken token, const QString& name = QString());
    /** Takes back what the action recorded, alone, and ends it. False if the token names no open action, or if
     * something could not be taken back (a list that is being read): that stays a part of the step. */
    bool userActionAborted(UserActionToken token);

    /** Steps that end between these two merge with the one before if they share a property of an object: a drag, the
     * typing in a line. Gestures do not nest: a new one ends the last. Gives the gesture's number. */
    int gestureBegin();
    void gestureEnd();
    /** Goes on with a gesture that was ended for a while, so that nobody else's steps get into it meanwhile. */
    void gestureResume(int gesture);
    /** Takes back the last step and forgets it, if it is of this gesture: no redo brings it back. False if there is
     * none that could be taken back. */
    bool gestureDrop(int gesture);

    /** The history of finished steps. Undo and redo through undo() and redo(): those refuse while a user action is open
     * and from within an undo, and leave everything as it was when a step cannot be taken back whole. */
    QUndoStack& undoStack();
    bool undo();
    bool redo();

    /** True if a step of the history keeps objects whose classes belong to a module. */
    bool historyHoldsObjectsOf(const char* module) const;

private:
    LyqApplication();
    ~LyqApplication() override;
    struct Private;
    std::unique_ptr<Private> d;
};

/** A user action that ends with the scope. */
class LYS_CORE_EXPORT LyqApplication::UserActionScope {
public:
    explicit UserActionScope(const QString& name);
    ~UserActionScope();
    UserActionScope(const UserActionScope&) = delete;
    UserActionScope& operator=(const UserActionScope&) = delete;

    /** False where there was no memory for an action, or once it has been ended. */
    bool isOpen() const;
    /** Ends the action now; the destructor has nothing left to end. The result is that of userActionEnd(). */
    bool end();
    /** Takes back what was recorded; the destructor has nothing left to end. */
    void abort();

private:
    UserActionToken mToken;
};

/** A gesture that ends with the scope. */
class LYS_CORE_EXPORT LyqApplication::GestureScope {
public:
    GestureScope() { LyqApplication::instance().gestureBegin(); }
    ~GestureScope() { LyqApplication::instance().gestureEnd(); }
    GestureScope(const GestureScope&) = delete;
    GestureScope& operator=(const GestureScope&) = delete;
};
