#pragma once

#include <lyr_core/LyrString.h>
#include <lys_core/LysCoreExport.h>

#include <QString>

class LyrObject;

namespace ly::i18n {

/** Placeholders in texts that users write. A template holds them as `%{key}`; an editor shows `{Name}` with the
 * translated name; the displayed text has what the placeholder's resolver gives for the object that the text belongs
 * to. Placeholders that nobody registered stay as they are in all three forms. */
class LYS_CORE_EXPORT Placeholders {
public:
    /** Gives the text for a placeholder; a null string stands for nothing. `object` may be null. */
    using Resolver = LyrString (*)(const LyrString& key, const LyrObject* object);

    /** Registers a placeholder. All texts are copied. False if the key or name is empty or holds a brace, the key is
     * taken, or, with an error, memory ran out. */
    static bool add(const LyrString& key, const LyrString& name, const LyrString& description, Resolver resolver,
                    const char* module);
    /** Takes out all placeholders of a module; returns how many they were. */
    static int removeAllFrom(const char* module);
    static bool contains(const LyrString& key);

    /** The text to display. `error` (may be null) becomes true if the template holds an unknown placeholder. One whose
     * text found no memory stays as it is, with an error. */
    static QString internalToDisplayText(const QString& text, const LyrObject* object, bool* error = nullptr);
    static QString internalToEditText(const QString& text, const LyrObject* object);
    static QString editToInternalText(const QString& text, const LyrObject* object);
};

/** The placeholders of the application. */
using ApplicationPlaceholders = Placeholders;

}  // namespace ly::i18n

using ly::i18n::ApplicationPlaceholders;
