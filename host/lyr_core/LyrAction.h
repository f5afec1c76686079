#pragma once

#include <lyr_core/LyrClass.h>
#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/Lyrenum.h>

class LyrObject;

/** An operation that is run on an object by identifier (LyrObject::runAction). A run calls check(), execute() and
 * cleanUp() in this order; each reports by ok() or error(). execute() is skipped when check() failed, cleanUp() always
 * runs. */
class LYR_CORE_EXPORT LyrAction : public LyrClassMember {
public:
    ~LyrAction() override;

    virtual void check();
    virtual void execute() = 0;
    virtual void cleanUp();

    /** The object that the action runs on, null outside a run. */
    LyrObject* getObject() const noexcept { return mObject; }
    LyrObject* getParameter() const noexcept { return mParameter; }
    Lyrenum getActionID() const noexcept { return mActionId; }
    /** The identifier that names the action among those with the same action identifier; -1 for none. */
    Lyrenum getName() const noexcept { return mName; }

    /** The code that ok() or error() was given last; -1 before the first run. */
    Lyrenum getResult() const noexcept { return mResult; }

    /** Runs the action. Returns true if it ended with ok(). Both objects are kept alive meanwhile. */
    bool run(LyrObject* object, LyrObject* parameter);

protected:
    explicit LyrAction(Lyrenum name = -1) : mName(name) {}
    /** Reports success with a result. */
    void ok(Lyrenum result);
    /** Reports failure: the code goes to the error channel with the object as source. */
    void error(Lyrenum code);
    bool succeeded() const noexcept { return mSucceeded; }

private:
    friend class LyrObject;
    template <class Step>
    void attempt(Step step);

    LyrObject* mOwner = nullptr;
    LyrObject* mObject = nullptr;
    LyrObject* mParameter = nullptr;
    Lyrenum mActionId;
    Lyrenum mName;
    Lyrenum mResult;
    bool mRunning = false;
    bool mSucceeded = false;
    bool mFailed = false;
};

/** An action that is a member of the owning class. */
class LYR_CORE_EXPORT LyrActionAttr : public LyrAction {
public:
    LyrActionAttr(unsigned int set, unsigned int clear, Lyrenum name = -1) : LyrAction(name) { setFlags(set, clear); }
};
