#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrString.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

/** Object files: objects with everything that they own, as JSON text.
 *
 *      { "format": "lyr-object", "version": 1, "class": …, "base": …, "properties": { … } }
 *
 *  What is stored: every property that is neither computed nor read-only, in the order of registration; then the naming
 *  template, unless empty, as "NameTemplate"; then what an earlier file held that is not known here. Objects in hard
 * and parent links are written in place as { "class", "base", "properties" }, a null link as null. Soft links lead out
 * of the file and are not stored.
 *
 *  Values: an identifier is its registered name, a number where it has none; a boolean true or false; pairs, vectors
 * and colours are arrays of 2, 3, 4 numbers. A float is the shortest decimal that reads back to the same bits, -0.0
 * with its sign; floats that are not finite are the strings "nan", "inf", "-inf" (refused in lists that do not allow
 * them). A null text is null.
 *
 *  Layout: two spaces of indent, one member a line; an array without objects in it stands on one line, others have an
 * item a line; a newline at the end. A file of ours that is read and written again is the same byte for byte.
 *
 *  "base" names the nearest base class of another module, or else the direct parent, for classes that derive from
 * another class than LyrObject. Where a file's class is not known, its base is made instead, and class and properties
 * are written back.
 *
 *  Limits: 64 MiB, 64 levels, 4194304 values, 100000 objects. */
class LYR_CORE_EXPORT LyrObjectFile {
public:
    /** The version that is written, and the highest that is fully understood. */
    static constexpr int VERSION = 1;

    /** How an operation went. */
    struct Report {
        bool ok = false;
        /** The file is of a higher version: read as far as it is understood, never to be overwritten. */
        bool newerVersion = false;
        /** Why it failed: file, place and reason. When all went well: empty, or what a person should know (newer
         * version). */
        LyrString message;
        /** What was left out or replaced, each with its place. */
        std::vector<LyrString> warnings;
        /** The stored properties of the object itself that the file lacked; they have their defaults. */
        std::vector<Lyrenum> missing;
    };

    /** The text of an object. False, and a message (may be null), for what a file cannot hold: text that is no UTF-8, a
     * float that is not finite in a list that does not allow it, rings of owning links, more than the limits. */
    static bool write(const LyrObject& object, std::string& text, LyrString* message = nullptr);

    /** Makes the object of a text, and all that it owns, in a scope. The roles of owned objects are prepared, those of
     * the object itself are left to the caller. With `classes` given, the object must be of one of them. On failure
     * `out` is left alone. Everything is refused that is not exactly as described: see write(), and the names and types
     * of values; in a newer version a property that is not understood gets its default, with a warning. */
    static bool read(std::string_view text, LyrObjectPtr& out, Report& report,
                     std::initializer_list<const char*> classes = {}, Lyrenum scope = Lyr::DocumentScope);

    /** Gives an object the values of a text. The file's class (or its base, where the class is not known) must be the
     * target's class, derived from it, or a base of it other than LyrObject. Properties that the file lacks get their
     * defaults, soft links stay. All or nothing: on failure the target has the values that it had. */
    static bool readInto(std::string_view text, LyrObject& target, Report& report);

    /** As read(), from a file. Messages begin with the path. */
    static bool load(const std::string& path, LyrObjectPtr& out, Report& report,
                     std::initializer_list<const char*> classes = {}, Lyrenum scope = Lyr::DocumentScope);
    /** As readInto(), from a file. */
    static bool loadInto(const std::string& path, LyrObject& target, Report& report);

    /** Writes an object to a file, safely (LyrFileSaver). A file of a higher version, or one whose version cannot be
     * found out because it cannot be read, is not replaced. */
    static bool save(const LyrObject& object, const std::string& path, Report& report);
    /** False, and a message, for a file that save() would not replace. */
    static bool mayReplace(const std::string& path, Report& report);
};
