#pragma once

#include <lyr_core/Lyrenum.h>
#include <lys_core/LysCoreExport.h>

#include <map>

class LyrObject;

/** Knows the preset handlers of the application by their identifiers, so that an editor finds the one for what it
 * edits. */
class LYS_CORE_EXPORT LyqPresetRegistry {
public:
    /** Gets told which object presets are saved from and applied to. Leaves the registry when it goes. */
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

private:
    std::map<int, Receiver*> mReceivers;
};
