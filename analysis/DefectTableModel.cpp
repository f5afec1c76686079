#include <analysis/DefectTableModel.h>
#include <analysis/LyrDefectLayer.h>
#include <analysis/compute/LyrDefectResult.h>
#include <analysis/compute/LyrVerdict.h>
#include <lyr_core/LyrHostIdentifiers.h>

#include <algorithm>
#include <numeric>

namespace {

bool isLength(int column) {
    return column == DefectTableModel::X || column == DefectTableModel::Y || column == DefectTableModel::Z ||
           column == DefectTableModel::Size;
}

}  // namespace

DefectTableModel::DefectTableModel(QObject* parent)
    : QAbstractTableModel(parent), mLength(Lyr::Length), mVolume(Lyr::Volume), mPlain(Lyr::Number) {
    const auto refresh = [this] {
        Q_EMIT headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
        if (!mRows.empty()) {
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
        }
    };
    connect(&mLength, &LyqUnitConverter::displayUnitChanged, this, refresh);
    connect(&mVolume, &LyqUnitConverter::displayUnitChanged, this, refresh);
}

void DefectTableModel::setLayer(const LyrDefectLayer* layer) {
    beginResetModel();
    mLayer = layer;
    mRows.resize(layer ? layer->result().defects.size() : 0);
    mVerdicts = layer ? layer->verdicts() : std::vector<LyrVerdict>();
    mSortColumn = mVerdicts.empty() && mSortColumn == Verdict ? static_cast<int>(Number) : mSortColumn;
    std::iota(mRows.begin(), mRows.end(), 0u);
    reorder();
    endResetModel();
}

void DefectTableModel::updateVerdicts() {
    std::vector<LyrVerdict> now = mLayer ? mLayer->verdicts() : std::vector<LyrVerdict>();
    if (now == mVerdicts) {
        return;
    }
    if (mVerdicts.empty()) {
        beginInsertColumns({}, Verdict, Verdict);
        mVerdicts = std::move(now);
        endInsertColumns();
    } else if (now.empty()) {
        if (mSortColumn == Verdict) {
            sort(Number);
        }
        beginRemoveColumns({}, Verdict, Verdict);
        mVerdicts.clear();
        endRemoveColumns();
    } else {
        mVerdicts = std::move(now);
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
    return parent.isValid() ? 0 : mVerdicts.empty() ? static_cast<int>(Verdict) : static_cast<int>(ColumnCount);
}

double DefectTableModel::value(std::size_t at, int column) const {
    const LyrDefect& defect = mLayer->result().defects[at];
    switch (column) {
        case Volume:
            return defect.volume;
        case X:
        case Y:
        case Z:
            return defect.center[static_cast<std::size_t>(column - X)];
        case Size:
            return defect.size;
        case Sphericity:
            return defect.sphericity;
        case Verdict:
            return mVerdicts.empty() ? 0.0 : static_cast<double>(mVerdicts[at]);
        default:
            return static_cast<double>(defect.number);
    }
}

QString DefectTableModel::text(std::size_t defect, int column) const {
    if (column == Verdict) {
        const QString names[] = {QString(), tr("Pass"), tr("Warn"), tr("Fail")};
        return names[static_cast<std::size_t>(value(defect, Verdict))];
    }
    const LyqUnitConverter& converter = column == Volume ? mVolume : isLength(column) ? mLength : mPlain;
    // A hundredth of a voxel and a thousandth of a volume say all that there is.
    constexpr int DIGITS = 5;
    return converter.internalToDisplayString(value(defect, column), LyqUnitConverter::NumberOnly,
                                             column == Number ? 10 : DIGITS);
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
            return value(defect, index.column());
        case Qt::TextAlignmentRole:
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
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
    std::vector<double> keys(mRows.size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        keys[i] = value(i, mSortColumn);
    }
    std::sort(mRows.begin(), mRows.end(), [&](std::uint32_t a, std::uint32_t b) {
        if (keys[a] == keys[b]) {
            return a < b;
        }
        return mOrder == Qt::AscendingOrder ? keys[a] < keys[b] : keys[a] > keys[b];
    });
}

void DefectTableModel::sort(int column, Qt::SortOrder order) {
    if (column < 0 || column >= columnCount()) {
        return;
    }
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    std::vector<std::uint32_t> numbers;
    for (const QModelIndex& each : before) {
        numbers.push_back(numberAt(each.row()));
    }
    mSortColumn = column;
    mOrder = order;
    reorder();
    QModelIndexList after;
    for (qsizetype i = 0; i < before.size(); ++i) {
        after << index(rowOf(numbers[static_cast<std::size_t>(i)]), before[i].column());
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, VerticalSortHint);
}
