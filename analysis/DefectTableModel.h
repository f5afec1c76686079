#pragma once

#include <analysis/LysAnalysisExport.h>
#include <lys_core/LyqUnitConverter.h>

#include <QAbstractTableModel>

#include <cstdint>
#include <vector>

class LyrDefectLayer;
enum class LyrVerdict;

/** The defects of a layer as rows that can be sorted, in the units that the user chose. */
class LYS_ANALYSIS_EXPORT DefectTableModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { Number, Volume, X, Y, Z, Size, Sphericity, Verdict, ColumnCount };

    explicit DefectTableModel(QObject* parent = nullptr);

    /** Shows the defects of a layer, which has to outlive that; null shows none. */
    void setLayer(const LyrDefectLayer* layer);
    /** Asks the layer anew what its table says of the defects. The column of verdicts is there only while it is a
     * tolerance table. */
    void updateVerdicts();
    const std::vector<LyrVerdict>& verdicts() const { return mVerdicts; }
    /** The number of the defect in a row, 0 if there is no such row. */
    std::uint32_t numberAt(int row) const;
    /** The row of a defect, -1 if there is none of that number. */
    int rowOf(std::uint32_t number) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    /** By the values, not by their texts; equal ones by number. */
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

private:
    double value(std::size_t defect, int column) const;
    QString text(std::size_t defect, int column) const;
    void reorder();

    const LyrDefectLayer* mLayer = nullptr;
    std::vector<std::uint32_t> mRows;   ///< which defect, from 0, stands in each row
    std::vector<LyrVerdict> mVerdicts;  ///< of each defect, empty without a tolerance table
    LyqUnitConverter mLength;
    LyqUnitConverter mVolume;
    LyqUnitConverter mPlain;
    int mSortColumn = Number;
    Qt::SortOrder mOrder = Qt::AscendingOrder;
};
