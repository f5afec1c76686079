#pragma once

#include <analysis/LysAnalysisExport.h>
#include <lys_core/LyqUnitConverter.h>

#include <QAbstractTableModel>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

class LyqBackgroundJob;
class LyrDefectLayer;
enum class LyrVerdict;

/** The defects of a layer as rows that can be sorted, in the units that the user chose. A list of more than
 * SORTED_AT_ONCE rows is sorted in the background, and keeps its order until that is done. */
class LYS_ANALYSIS_EXPORT DefectTableModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { Number, Volume, X, Y, Z, Size, Sphericity, Verdict, ColumnCount };

    static constexpr std::size_t SORTED_AT_ONCE = 20000;

    explicit DefectTableModel(QObject* parent = nullptr);
    ~DefectTableModel() override;

    /** Shows the defects of a layer, which has to outlive that; null shows none. */
    void setLayer(const LyrDefectLayer* layer);
    /** Asks the layer anew what its table says of the defects. The column of verdicts is there only while it is a
     * tolerance table. */
    void updateVerdicts();
    const std::vector<LyrVerdict>& verdicts() const { return *mVerdicts; }
    /** True while the rows are not yet in the order that was asked for last. */
    bool isSorting() const { return mSortJob != nullptr; }
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
    struct Order;

    QString text(std::size_t defect, int column) const;
    Order wantedOrder() const;
    void reorder();
    void sortInBackground();
    void takeOrder(std::vector<std::uint32_t>&& rows);
    void setVerdicts(std::vector<LyrVerdict>&& verdicts);

    const LyrDefectLayer* mLayer = nullptr;
    std::vector<std::uint32_t> mRows;  ///< which defect, from 0, stands in each row
    /** Of each defect, empty without a tolerance table; not null. */
    std::shared_ptr<const std::vector<LyrVerdict>> mVerdicts;
    std::unique_ptr<LyqBackgroundJob> mSortJob;
    bool mSortAgain = false;  ///< what the job sorts by is not what is wanted any more
    LyqUnitConverter mLength;
    LyqUnitConverter mVolume;
    LyqUnitConverter mPlain;
    int mSortColumn = Number;
    Qt::SortOrder mOrder = Qt::AscendingOrder;
};
