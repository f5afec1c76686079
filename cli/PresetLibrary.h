#pragma once

#include <colortable/presets/LyqPresetColortableHandler.h>
#include <lyr_core/LyrObjectPtr.h>

#include <string>
#include <vector>

namespace lys::cli {

/** The presets of colour tables that commands work with: the user's, the installed and the built-in ones. */
class PresetLibrary {
public:
    struct Entry {
        std::string name;
        Lyrenum kind;
        std::string problem;  ///< why it cannot be used, empty if nothing is known against it
    };

    /** A stored preset as it is, before it is applied. */
    struct Stored {
        LyrObjectPtr proxy;
        LyrObjectPtr table;
        bool isAbsolute = true;
        LyrInterval<float, float> referenceRange;
    };

    PresetLibrary();

    LyqPresetColortableHandler& handler() { return static_cast<LyqPresetColortableHandler&>(*mHandler); }

    /** All presets, the user's first. Folders that cannot be read are warned of. */
    std::vector<Entry> list();
    /** The kind of the preset that a name stands for, -1 if there is none. */
    Lyrenum find(const std::string& name) { return handler().findPreset(LyrString(name)); }
    /** The same; throws Failure (Unusable) if there is none. */
    Lyrenum require(const std::string& name);

    /** Applies a preset to a table. Throws Failure (Unusable) if it cannot be used. */
    void apply(const std::string& name, LyrObject& table);
    /** Throws Failure (Unusable) if it cannot be read. */
    Stored load(const std::string& name);

    /** "user", "installed" or "built-in". */
    static const char* wordFor(Lyrenum kind);

private:
    void loadProxy(const std::string& name, Lyrenum kind, Stored& stored);

    /** What was warned of last, once. */
    LyrString mTold;
    LyrObjectPtr mHandler;
};

/** A name for a line of text: in quotes if it holds anything that would break the line. */
std::string printable(const std::string& name);

}  // namespace lys::cli
