#pragma once

#include <lyr_core/LyrClass.h>
#include <lyr_core/LyrObjectPath.h>
#include <lys_core/LysCoreExport.h>

class QWidget;

/** An editor of objects that the host makes by class name and hands the selection to. Its widget may be the editor
 * itself; who deletes the one deletes the other. */
class LYS_CORE_EXPORT LyqObjectEditorHandler : public LyrClass {
public:
    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    /** A new editor of a class that derives from this one; null if there is none of this name. */
    static LyqObjectEditorHandler* create(const char* className);

    /** Whether the last links of these paths lead to objects that this editor can edit. */
    virtual bool checkObjects(const LyrObjectPath* paths, long long count) const = 0;
    /** Edits the objects at the ends of these paths from now on, in place of the ones before. */
    virtual void setObjects(const LyrObjectPath* paths, long long count) = 0;
    virtual QWidget* getWidget() = 0;
};
