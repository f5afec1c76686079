#pragma once

#include <analysis/LysAnalysisExport.h>
#include <lyr_core/Lyrenum.h>
#include <lys_core/LyqUnitConverter.h>

#include <QAbstractTableModel>
#include <QColor>

#include <functional>
#include <memory>
#include <vector>

struct LyrSectionShares;

/** The sections of a table as rows, the greatest values on top as in the table's editor, each with the share of the
 * volume whose values lie in it. */
class LYS_ANALYSIS_EXPORT SectionShareModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { Section, Share, ColumnCount };

    explicit SectionShareModel(QObject* parent = nullptr);
    ~SectionShareModel() override;

    /** @param boundaries  of the table, ascending; none for no rows
     *  @param shares      null while they are not known
     *  @param coloring    the colour of a value, an invalid one for none; called as long as it is set */
    void setTable(std::vector<float> boundaries, Lyrenum quantity, std::shared_ptr<const LyrSectionShares> shares,
                  std::function<QColor(float)> coloring);

    /** The section in a row, -1 if there is no such row. */
    int sectionAt(int row) const;
    /** What a tool tip tells of a section: its bounds and its share. Empty for a section that is not there. */
    QString description(int section) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    QString bounds(int section, int displayMode) const;
    QString share(int section) const;
    float sample(int section) const;

    std::vector<float> mBoundaries;
    std::shared_ptr<const LyrSectionShares> mShares;
    std::function<QColor(float)> mColoring;
    LyqUnitConverter mConverter;
};
