#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrEmbeddedList.h>
#include <lyr_core/Lyrenum.h>

#include <string>

class LyrClass;

/** The channel on which failures are reported, as a code and the object that failed. */
class LYR_CORE_EXPORT LyrError {
public:
    class LYR_CORE_EXPORT Message {
    public:
        explicit Message(Lyrenum code) noexcept : mCode(code) {}
        Message(const LyrClass* source, Lyrenum code) noexcept : mSource(source), mCode(code) {}

        const LyrClass* getSource() const noexcept { return mSource; }
        Lyrenum getCode() const noexcept { return mCode; }
        /** The code's meaning in words and the class of the source. Empty when memory ran out. */
        std::string getText() const noexcept;

    private:
        const LyrClass* mSource = nullptr;
        Lyrenum mCode;
    };

    /** Hears of errors while it lives. The listener made last hears first; where it answers true nobody else hears.
     * Listeners are made and destroyed while no other thread reports. */
    class LYR_CORE_EXPORT Listener : public LyrEmbeddedListNode<LyrError::Listener, LyrError::Listener> {
    public:
        Listener();
        virtual ~Listener();
        Listener(const Listener&) = delete;
        Listener& operator=(const Listener&) = delete;
        virtual bool errorEmitted(const Message& message) = 0;
    };

    /** Hands a message to the listeners, from any thread. What none of them keeps is a line on standard error, once for
     * errors of the same source and code that repeat; their number is told with the next other error. */
    static void emitError(const Message& message) noexcept;
};
