#pragma once

#include <lys_core/LysCoreExport.h>

#include <QString>

/** One thing that a plug-in offers to the window of its host: a dock, a menu action, a layer, an analysis. Made by the
 * plug-in and handed to LyqExtensionRegistry, which owns it from then on. To be used from the thread of the user
 * interface. */
class LYS_CORE_EXPORT LyqExtension {
public:
    /** All texts are copied.
     *  @param id      names the extension among those of its kind, in preferences and on command lines:
     * "wall-thickness"
     *  @param title   what users read, translated
     *  @param module  the plug-in that brings it */
    LyqExtension(const QString& id, const QString& title, const char* module);
    virtual ~LyqExtension();
    LyqExtension(const LyqExtension&) = delete;
    LyqExtension& operator=(const LyqExtension&) = delete;

    const QString& id() const { return mId; }
    const QString& title() const { return mTitle; }
    const QString& module() const { return mModule; }

private:
    QString mId;
    QString mTitle;
    QString mModule;
};
