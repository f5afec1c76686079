#pragma once

#include <lyr_core/Lyrenum.h>
#include <lys_core/LysCoreExport.h>

#include <memory>
#include <vector>

class LyqPresetHandler;
class LyrObject;

/** Knows the preset handlers of the application by their identifiers, those of their categories, so that an editor
 * finds the one for what it edits. Handlers that it keeps go before the module that their class belongs to. */
class LYS_CORE_EXPORT LyqPresetRegistry {
public:
    /** What an editor sees of a handler: it gets told which object presets are saved from and applied to. Leaves the
     * registry when it goes. */
    class LYS_CORE_EXPORT Receiver {
    public:
        virtual ~Receiver();
        /** Null for none. */
        virtual void setCurrentObject(LyrObject* object) = 0;
    };

    static LyqPresetRegistry& instance();

    /** False if the identifier is taken by another one. The receiver stays the caller's. */
    bool add(Lyrenum id, Receiver* receiver);
    void remove(Receiver* receiver);
    /** Null if there is none. */
    Receiver* find(Lyrenum id) const;

    /** Adds a handler under its category and keeps it alive. False if it is null or has no category, or if that is
     * taken by another one. */
    bool keep(LyqPresetHandler* handler);
    /** Makes a handler by the name of its class and keeps it. Null if there is no such class or the category is taken.
     */
    LyqPresetHandler* create(const char* className, Lyrenum category, const char* name);
    /** Lets go of a handler that is kept. False if there is none. */
    bool release(Lyrenum category);
    /** The handler of a category, null if there is none. */
    LyqPresetHandler* findHandler(Lyrenum category) const;

private:
    LyqPresetRegistry();
    ~LyqPresetRegistry();
    struct Private;
    std::unique_ptr<Private> d;
};
