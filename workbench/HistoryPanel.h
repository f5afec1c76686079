#pragma once

#include <QAbstractListModel>
#include <QListView>

class QUndoStack;

namespace workbench {

/** The steps of an undo history as a list: row 0 is the state before all of them, row i the state after step i. What
 * was undone is shown in grey. */
class HistoryModel : public QAbstractListModel {
    Q_OBJECT

public:
    explicit HistoryModel(QUndoStack& history, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;

Q_SIGNALS:
    /** The rows, or the state that the history is in, are others now. */
    void updated();

private:
    void update();

    QUndoStack& mHistory;
    int mRows;
};

/** Shows the undo history. A click on a state, or the keys that choose one and Enter, undo and redo up to it. */
class HistoryPanel : public QListView {
    Q_OBJECT

public:
    explicit HistoryPanel(QUndoStack& history, QWidget* parent = nullptr);

    QSize sizeHint() const override;

private:
    void goTo(int row);
    void showState();

    QUndoStack& mHistory;
};

}  // namespace workbench
