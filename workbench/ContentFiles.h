#pragma once

#include <lyr_core/LyrObjectPtr.h>
#include <lys_core/LyqLayer.h>

#include <QObject>
#include <QString>

#include <vector>

class QAction;
class QMenu;
class QWidget;

namespace workbench {

class DocumentChanges;

/** Opens and saves what the layers offer as their contents: entries of the file menu for those of the active layer, and
 * the question what to do with unsaved ones. */
class ContentFiles : public QObject {
    Q_OBJECT

public:
    /** @param menu  gets the entries at its end */
    ContentFiles(QWidget& window, QMenu& menu);

    const DocumentChanges& changes() const { return *mChanges; }

    /** Gives a content the values of a file, as one undo step. False, and a message, if it cannot be: all is as before
     * then. With true the message says what was left out, if something was. */
    bool open(const LyqLayer::Content& content, const QString& file, QString& message);
    /** Writes a content to a file. False, and a message, if it cannot be: an older file is as it was then. */
    bool save(const LyqLayer::Content& content, const QString& file, QString& message);

    /** Saves all that is unsaved, each to its file; asks for names where there is none. False if something was not
     * saved. */
    bool saveAll();
    /** To be called before the document is closed: asks what shall be done with unsaved changes, if there are some.
     * False if the user wants to go on with the document. */
    bool mayClose();

Q_SIGNALS:
    void failed(const QString& title, const QString& message);

private:
    struct Unsaved {
        LyqLayer::Content content;
        QString owner;      ///< title of its layer
        LyrObjectPtr held;  ///< a layer may go while a dialog is open
    };
    std::vector<Unsaved> unsaved() const;
    void rebuildMenu();
    void refresh();
    void chooseAndOpen(std::size_t index);
    void chooseAndSave(std::size_t index);
    bool saveAs(const LyqLayer::Content& content, const QString& owner);
    std::vector<LyqLayer::Content> activeContents() const;

    QWidget& mWindow;
    QMenu& mMenu;
    DocumentChanges* mChanges;
    QAction* mSaveAll;
    QAction* mEnd;  ///< the entries stand before it
    std::vector<QAction*> mEntries;
};

}  // namespace workbench
