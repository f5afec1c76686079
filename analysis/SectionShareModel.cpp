#include <analysis/SectionShareModel.h>
#include <analysis/compute/LyrValueHistogram.h>
#include <lyr_core/LyrHostIdentifiers.h>

#include <QLocale>

#include <cmath>
#include <limits>
#include <utility>

SectionShareModel::SectionShareModel(QObject* parent) : QAbstractTableModel(parent), mConverter(Lyr::Number) {
    connect(&mConverter, &LyqUnitConverter::displayUnitChanged, this, [this] {
        Q_EMIT headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
        if (rowCount() > 0) {
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
        }
    });
}

SectionShareModel::~SectionShareModel() = default;

void SectionShareModel::setTable(std::vector<float> boundaries, Lyrenum quantity,
                                 std::shared_ptr<const LyrSectionShares> shares,
                                 std::function<QColor(float)> coloring) {
    const bool sameRows = boundaries.size() == mBoundaries.size();
    if (!sameRows) {
        beginResetModel();
    }
    mBoundaries = std::move(boundaries);
    mShares = std::move(shares);
    mColoring = std::move(coloring);
    mConverter.setQuantity(quantity);
    if (!sameRows) {
        endResetModel();
    } else if (rowCount() > 0) {
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
    }
}

int SectionShareModel::sectionAt(int row) const {
    return row >= 0 && row < rowCount() ? rowCount() - 1 - row : -1;
}

int SectionShareModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() || mBoundaries.empty() ? 0 : static_cast<int>(mBoundaries.size()) + 1;
}

int SectionShareModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(ColumnCount);
}

QString SectionShareModel::bounds(int section, int displayMode) const {
    const auto text = [&](int boundary) {
        return mConverter.internalToDisplayString(static_cast<double>(mBoundaries[static_cast<std::size_t>(boundary)]),
                                                  displayMode, 5);
    };
    if (section == 0) {
        return QString::fromUtf8("< ") + text(0);
    }
    if (section == rowCount() - 1) {
        return QString::fromUtf8("> ") + text(section - 1);
    }
    return text(section - 1) + QString::fromUtf8(" … ") + text(section);
}

QString SectionShareModel::share(int section) const {
    if (!mShares || static_cast<std::size_t>(section) >= mShares->counts.size()) {
        return {};
    }
    constexpr double LEAST = 0.01;
    const double percent = mShares->percent(static_cast<std::size_t>(section));
    return percent > 0.0 && percent < LEAST ? tr("< %1 %").arg(QLocale().toString(LEAST, 'f', 2))
                                            : tr("%1 %").arg(QLocale().toString(percent, 'f', 2));
}

QString SectionShareModel::description(int section) const {
    if (section < 0 || section >= rowCount()) {
        return {};
    }
    const QString where = bounds(section, LyqUnitConverter::WithUnit);
    const QString part = share(section);
    return part.isEmpty() ? where : tr("%1: %2 of the volume").arg(where, part);
}

/** A value in the section. */
float SectionShareModel::sample(int section) const {
    constexpr float ENDLESS = std::numeric_limits<float>::infinity();
    if (section == 0) {
        return std::nextafter(mBoundaries.front(), -ENDLESS);
    }
    const float low = mBoundaries[static_cast<std::size_t>(section) - 1];
    return section == rowCount() - 1 ? std::nextafter(low, ENDLESS)
                                     : low + (mBoundaries[static_cast<std::size_t>(section)] - low) * 0.5f;
}

QVariant SectionShareModel::data(const QModelIndex& index, int role) const {
    const int section = index.isValid() ? sectionAt(index.row()) : -1;
    if (section < 0) {
        return {};
    }
    switch (role) {
        case Qt::DisplayRole:
            return index.column() == Section ? bounds(section, LyqUnitConverter::NumberOnly) : share(section);
        case Qt::DecorationRole: {
            const QColor color = index.column() == Section && mColoring ? mColoring(sample(section)) : QColor();
            return color.isValid() ? QVariant(color) : QVariant();
        }
        case Qt::ToolTipRole:
            return description(section);
        case Qt::TextAlignmentRole:
            return index.column() == Share ? QVariant(Qt::AlignRight | Qt::AlignVCenter) : QVariant();
        default:
            return {};
    }
}

QVariant SectionShareModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    if (section == Share) {
        return tr("Share of Volume");
    }
    const QString unit = mConverter.getDisplayUnitAbbr();
    return unit.isEmpty() ? tr("Section") : tr("Section [%1]").arg(unit);
}
