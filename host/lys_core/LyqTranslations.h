#pragma once

#include <lys_core/LysCoreExport.h>

#include <QLocale>
#include <QString>

/** The translations of all libraries: files lys_<language>.qm in one folder beside the libraries. They are the host's,
 * so a module that goes takes no translation with it. */
class LYS_CORE_EXPORT LyqTranslations {
public:
    /** Where the files are: share/lys/translations beside the folder of the libraries. */
    static QString folder();

    /** Shows all texts in the language of a locale from now on, in place of an earlier one. Needs the application
     * object. False if there is no file for the language; texts are then those of the sources. */
    static bool install(const QLocale& locale);
    static void remove();
};
