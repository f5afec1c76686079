#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrString.h>
#include <lyr_core/Lyrenum.h>

/** Translation of texts that people read. Texts are known by a context and a key, the text as the program has it; an
 *  application installs the translator that knows their translations. */
class LYR_CORE_EXPORT LyrI18n {
public:
    /** Knows the translations of texts. Called from any thread, also from several at once. */
    class LYR_CORE_EXPORT Translator {
    public:
        virtual ~Translator();
        /** The translation, or a null string for a text that the translator does not know. None of the texts is a null
         *  pointer; language is −1 for the language of the application. */
        virtual LyrString translate(const char* context, const char* key, const char* comment,
                                    Lyrenum language) const = 0;
    };

    /** The translated text, or the key itself without a translator or a translation; null for a null key, and,
     *  with an error, where memory runs out. The comment
     *  tells apart equal keys of one context and may be null like the context. */
    static LyrString translate(const char* context, const char* key, const char* comment = nullptr,
                               Lyrenum language = Lyrenum(-1));

    /** Installs a translator, null for none, and returns the one before. It stays the caller's and must live until
     *  another one is installed and every translation begun before has ended. */
    static Translator* setTranslator(Translator* translator) noexcept;
    static Translator* getTranslator() noexcept;
};
