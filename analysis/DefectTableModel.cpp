#include <analysis/AnalysisIdentifiers.h>
#include <analysis/DefectTableModel.h>
#include <analysis/LyrDefectLayer.h>
#include <analysis/ToleranceTable.h>
#include <analysis/compute/LyrDefectResult.h>
#include <analysis/compute/LyrVerdict.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrRGBA.h>
#include <lys_core/LyqBackgroundJob.h>

#include <QColor>

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

bool isLength(int column) {
    return column == DefectTableModel::X || column == DefectTableModel::Y || column == DefectTableModel::Z ||
           column == DefectTableModel::Size;
}

/** The colour that a tolerance table gives, beside the word: letters in it would be hard to read on some themes. */
QVariant colorOf(LyrVerdict verdict) {
    const LyrRGBA<float> color = lysColorOf(verdict);
    return verdict == LyrVerdict::None ? QVariant() : QColor::fromRgbF(color.red, color.green, color.blue);
}

double valueOf(const LyrDefect& defect, const std::vector<LyrVerdict>& verdicts, int column) {
    switch (column) {
        case DefectTableModel::Volume:
            return defect.volume;
        case DefectTableModel::X:
        case DefectTableModel::Y:
        case DefectTableModel::Z:
            return defect.center[static_cast<std::size_t>(column - DefectTableModel::X)];
        case DefectTableModel::Size:
            return defect.size;
        case DefectTableModel::Sphericity:
            return defect.sphericity;
        case DefectTableModel::Verdict:
            return verdicts.empty() ? 0.0 : static_cast<double>(verdicts[defect.number - 1]);
        default:
            return static_cast<double>(defect.number);
    }
}

}  // namespace

/** All that an order of the rows follows from, for any thread. */
struct DefectTableModel::Order {
    std::shared_ptr<const LyrDefectResult> result;
    std::shared_ptr<const std::vector<LyrVerdict>> verdicts;
    int column;
    bool ascending;

    std::vector<std::uint32_t> rows() const {
        std::vector<std::uint32_t> all(result ? result->defects.size() : 0);
        std::iota(all.begin(), all.end(), 0u);
        if (column == Number) {
            // They are numbered in their order.
            if (!ascending) {
                std::reverse(all.begin(), all.end());
            }
            return all;
        }
        std::vector<double> keys(all.size());
        for (std::size_t i = 0; i < keys.size(); ++i) {
            keys[i] = valueOf(result->defects[i], *verdicts, column);
        }
        std::sort(all.begin(), all.end(), [&](std::uint32_t a, std::uint32_t b) {
            if (keys[a] == keys[b]) {
                return a < b;
            }
            return ascending ? keys[a] < keys[b] : keys[a] > keys[b];
        });
        return all;
    }
};

DefectTableModel::DefectTableModel(QObject* parent)
    : QAbstractTableModel(parent),
      mVerdicts(std::make_shared<std::vector<LyrVerdict>>()),
      mLength(Lyr::Length),
      mVolume(Lyr::Volume),
      mPlain(Lyr::Number) {
    const auto refresh = [this] {
        Q_EMIT headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
        if (!mRows.empty()) {
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
        }
    };
    connect(&mLength, &LyqUnitConverter::displayUnitChanged, this, refresh);
    connect(&mVolume, &LyqUnitConverter::displayUnitChanged, this, refresh);
}

DefectTableModel::~DefectTableModel() = default;

void DefectTableModel::setVerdicts(std::vector<LyrVerdict>&& verdicts) {
    mVerdicts = std::make_shared<const std::vector<LyrVerdict>>(std::move(verdicts));
}

void DefectTableModel::setLayer(const LyrDefectLayer* layer) {
    beginResetModel();
    mLayer = layer;
    setVerdicts(layer ? layer->verdicts() : std::vector<LyrVerdict>());
    mSortColumn = mVerdicts->empty() && mSortColumn == Verdict ? static_cast<int>(Number) : mSortColumn;
    Order order = wantedOrder();
    const bool isLong = order.result && order.result->defects.size() > SORTED_AT_ONCE;
    if (isLong && order.column != Number) {
        order.column = Number;
        order.ascending = true;
    }
    mRows = order.rows();
    mSortAgain = mSortJob != nullptr;
    endResetModel();
    if (isLong && mSortColumn != Number) {
        sortInBackground();
    }
}

DefectTableModel::Order DefectTableModel::wantedOrder() const {
    return {mLayer ? mLayer->sharedResult() : nullptr, mVerdicts, mSortColumn, mOrder == Qt::AscendingOrder};
}

void DefectTableModel::updateVerdicts() {
    std::vector<LyrVerdict> now = mLayer ? mLayer->verdicts() : std::vector<LyrVerdict>();
    if (now == *mVerdicts) {
        return;
    }
    if (mVerdicts->empty()) {
        beginInsertColumns({}, Verdict, Verdict);
        setVerdicts(std::move(now));
        endInsertColumns();
    } else if (now.empty()) {
        if (mSortColumn == Verdict) {
            sort(Number);
        }
        beginRemoveColumns({}, Verdict, Verdict);
        setVerdicts({});
        endRemoveColumns();
    } else {
        setVerdicts(std::move(now));
        Q_EMIT dataChanged(index(0, Verdict), index(rowCount() - 1, Verdict));
        if (mSortColumn == Verdict) {
            sort(Verdict, mOrder);
        }
    }
}

std::uint32_t DefectTableModel::numberAt(int row) const {
    return row >= 0 && row < rowCount() ? mRows[static_cast<std::size_t>(row)] + 1 : 0;
}

int DefectTableModel::rowOf(std::uint32_t number) const {
    const auto found = std::find(mRows.begin(), mRows.end(), number - 1);
    return number > 0 && found != mRows.end() ? static_cast<int>(found - mRows.begin()) : -1;
}

int DefectTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(mRows.size());
}

int DefectTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : mVerdicts->empty() ? static_cast<int>(Verdict) : static_cast<int>(ColumnCount);
}

QString DefectTableModel::text(std::size_t defect, int column) const {
    if (column == Verdict) {
        const QString names[] = {QString(), tr("Pass"), tr("Warn"), tr("Fail")};
        return mVerdicts->empty() ? QString() : names[static_cast<std::size_t>((*mVerdicts)[defect])];
    }
    const double value = valueOf(mLayer->result().defects[defect], *mVerdicts, column);
    const LyqUnitConverter& converter = column == Volume ? mVolume : isLength(column) ? mLength : mPlain;
    // A hundredth of a voxel and a thousandth of a volume say all that there is.
    constexpr int DIGITS = 5;
    return converter.internalToDisplayString(value, LyqUnitConverter::NumberOnly, column == Number ? 10 : DIGITS);
}

QVariant DefectTableModel::data(const QModelIndex& index, int role) const {
    if (!mLayer || !index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const std::size_t defect = mRows[static_cast<std::size_t>(index.row())];
    switch (role) {
        case Qt::DisplayRole:
            return text(defect, index.column());
        case Qt::UserRole:
            return valueOf(mLayer->result().defects[defect], *mVerdicts, index.column());
        case Qt::DecorationRole:
            return index.column() == Verdict && !mVerdicts->empty() ? colorOf((*mVerdicts)[defect]) : QVariant();
        case Qt::TextAlignmentRole:
            // The word stands beside its colour.
            return QVariant::fromValue((index.column() == Verdict ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
        default:
            return {};
    }
}

QVariant DefectTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    const QString titles[] = {tr("Number"), tr("Volume"), tr("X"),          tr("Y"),
                              tr("Z"),      tr("Size"),   tr("Sphericity"), tr("Verdict")};
    if (section < 0 || section >= columnCount()) {
        return {};
    }
    const QString unit = section == Volume   ? mVolume.getDisplayUnitAbbr()
                         : isLength(section) ? mLength.getDisplayUnitAbbr()
                                             : QString();
    return unit.isEmpty() ? titles[section] : QString::fromUtf8("%1 [%2]").arg(titles[section], unit);
}

void DefectTableModel::reorder() {
    if (mRows.size() > SORTED_AT_ONCE && mSortColumn != Number) {
        sortInBackground();
    } else {
        mSortAgain = mSortJob != nullptr;
        takeOrder(wantedOrder().rows());
    }
}

void DefectTableModel::sortInBackground() {
    // One at a time: waiting for the one that is under way would take as long as it takes.
    mSortAgain = mSortJob != nullptr;
    if (mSortJob) {
        return;
    }
    const auto rows = std::make_shared<std::vector<std::uint32_t>>();
    mSortJob = std::make_unique<LyqBackgroundJob>(
        [rows, order = wantedOrder()](const LyqBackgroundJob::Progress&, QString&) {
            *rows = order.rows();
            return true;
        },
        QString::fromUtf8(LYS_ANALYSIS_MODULE));
    connect(mSortJob.get(), &LyqBackgroundJob::finished, this, [this, rows](bool done) {
        mSortJob.release()->deleteLater();
        if (mSortAgain) {
            reorder();
        } else if (done && rows->size() == mRows.size()) {
            takeOrder(std::move(*rows));
        }
    });
    mSortJob->start();
}

/** Puts the rows into another order; what is selected stays selected. */
void DefectTableModel::takeOrder(std::vector<std::uint32_t>&& rows) {
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    std::vector<std::uint32_t> numbers;
    for (const QModelIndex& each : before) {
        numbers.push_back(numberAt(each.row()));
    }
    mRows = std::move(rows);
    QModelIndexList after;
    for (qsizetype i = 0; i < before.size(); ++i) {
        after << index(rowOf(numbers[static_cast<std::size_t>(i)]), before[i].column());
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

void DefectTableModel::sort(int column, Qt::SortOrder order) {
    if (column < 0 || column >= columnCount()) {
        return;
    }
    mSortColumn = column;
    mOrder = order;
    reorder();
}
