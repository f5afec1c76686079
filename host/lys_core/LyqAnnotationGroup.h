#pragma once

#include <lyr_core/Lyrenum.h>
#include <lys_core/LysCoreExport.h>

#include <QObject>
#include <QPointer>

/** Annotations of one kind in a workspace widget. */
class LYS_CORE_EXPORT LyqAnnotationGroup : public QObject {
    Q_OBJECT

public:
    LyqAnnotationGroup(Lyrenum id, LyqAnnotationGroup* parentGroup, QObject* owner)
        : QObject(owner), mId(id), mParentGroup(parentGroup) {}

    Lyrenum getID() const { return mId; }
    LyqAnnotationGroup* getParentGroup() const { return mParentGroup; }

private:
    Lyrenum mId;
    QPointer<LyqAnnotationGroup> mParentGroup;
};
