#pragma once

#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrObjectPtr.h>

#include <QObject>
#include <QString>

#include <vector>

class LyrObject;

namespace workbench {

/** Which contents of the session's layers were changed since they were opened or saved, and where their files are.
 *
 *  A content is modified by a change of a property that is flagged for it, its own or that of an object that it owns.
 * It is unmodified again when undo or redo brings back exactly what was saved. */
class DocumentChanges : public QObject, public LyrIOC {
    Q_OBJECT

public:
    explicit DocumentChanges(QObject* parent = nullptr);
    ~DocumentChanges() override;

    bool isModified() const;
    bool isModified(const LyrObject* content) const;

    /** The file that a content was read from or saved to last; empty if there is none. */
    QString file(const LyrObject* content) const;
    /** A content is as its file is now. */
    void setSaved(const LyrObject* content, const QString& file);

    /** A layer may come to have another content at any time. */
    bool iocCallback(Message& message) override;

Q_SIGNALS:
    /** isModified() gives another answer, of the whole or of one content. */
    void changed();

private:
    class Watch;
    Watch* watchOf(const LyrObject* content) const;
    void follow();
    void compare();

    LyrObjectIOCPtrList mLayers;
    std::vector<LyrObjectPtr> mWatches;
};

}  // namespace workbench
