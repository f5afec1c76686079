#include <lys_core/LyqApplication.h>
#include <workbench/HistoryPanel.h>

#include <QFont>
#include <QGuiApplication>
#include <QPalette>
#include <QUndoStack>

namespace workbench {

HistoryModel::HistoryModel(QUndoStack& history, QObject* parent)
    : QAbstractListModel(parent), mHistory(history), mRows(history.count() + 1) {
    connect(&mHistory, &QUndoStack::indexChanged, this, &HistoryModel::update);
}

/** Merged steps and cleared histories change rows without a word about which: the list is told anew. */
void HistoryModel::update() {
    beginResetModel();
    mRows = mHistory.count() + 1;
    endResetModel();
    Q_EMIT updated();
}

int HistoryModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : mRows;
}

QVariant HistoryModel::data(const QModelIndex& index, int role) const {
    const int row = index.row();
    if (!index.isValid() || row > mHistory.count()) {
        return {};
    }
    switch (role) {
        case Qt::DisplayRole: {
            return row == 0 ? tr("Beginning") : mHistory.text(row - 1);
        }
        case Qt::ForegroundRole: {
            return row > mHistory.index() ? QVariant(QGuiApplication::palette().brush(QPalette::PlaceholderText))
                                          : QVariant();
        }
        default: {
            return {};
        }
    }
}

HistoryPanel::HistoryPanel(QUndoStack& history, QWidget* parent) : QListView(parent), mHistory(history) {
    setObjectName("history");
    setAccessibleName(tr("History"));
    setUniformItemSizes(true);
    setSpacing(2);
    setEditTriggers(NoEditTriggers);
    auto* model = new HistoryModel(history, this);
    setModel(model);
    connect(model, &HistoryModel::updated, this, &HistoryPanel::showState);
    connect(this, &QListView::clicked, this, [this](const QModelIndex& index) { goTo(index.row()); });
    connect(this, &QListView::activated, this, [this](const QModelIndex& index) { goTo(index.row()); });
    showState();
}

QSize HistoryPanel::sizeHint() const {
    return {fontMetrics().averageCharWidth() * 32, fontMetrics().height() * 8};
}

void HistoryPanel::goTo(int row) {
    LyqApplication& application = LyqApplication::instance();
    const int steps = row - mHistory.index();
    for (int done = 0; done < qAbs(steps); ++done) {
        if (!(steps < 0 ? application.undo() : application.redo())) {
            break;  // the step cannot be taken now: the state stays the one that was reached
        }
    }
    showState();
}

void HistoryPanel::showState() {
    setCurrentIndex(model()->index(mHistory.index(), 0));
}

}  // namespace workbench
