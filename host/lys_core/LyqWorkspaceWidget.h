#pragma once

#include <lyr_core/LyrObject.h>
#include <lys_core/LysCoreExport.h>

#include <QWidget>

#include <vector>

class LyqAnnotationGroup;

/** A view of the workspace, as a widget and as an object of the host's graph. Plug-ins equip views through factory
 * hooks on this class, so views are made by their meta classes. They end like any widget: deleted, or with their
 * parent.
 *
 *  The widget owns itself: references keep it from nothing. */
class LYS_CORE_EXPORT LyqWorkspaceWidget : public QWidget, public LyrObject {
    Q_OBJECT

public:
    ~LyqWorkspaceWidget() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    /** The group with an identifier, null if there is none. */
    LyqAnnotationGroup* getAnnotationGroup(Lyrenum id) const;
    /** Adds a group; null if there is one with this identifier. */
    LyqAnnotationGroup* addAnnotationGroup(Lyrenum id, LyqAnnotationGroup* parentGroup = nullptr);

protected:
    LyqWorkspaceWidget();

private:
    std::vector<LyqAnnotationGroup*> mGroups;
};
