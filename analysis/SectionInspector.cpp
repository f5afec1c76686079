#include <analysis/HistogramView.h>
#include <analysis/LyrColoredLayer.h>
#include <analysis/SectionInspector.h>
#include <analysis/SectionShareModel.h>
#include <analysis/TableBoundaries.h>
#include <analysis/ValueOrder.h>
#include <analysis/compute/LyrSortedValues.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/legend/LyqColorLookupTableWidget.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <QEvent>
#include <QHeaderView>
#include <QMouseEvent>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/** Rows of the list that are seen at once. */
constexpr int ROWS = 4;

QColor colorOf(const LyrColorLookupTable* table, float value) {
    LyrRGBA<float> color;
    if (!table || !table->getColor(value, color)) {
        return {};
    }
    const auto channel = [](float part) { return part > 0.0f ? std::min(part, 1.0f) : 0.0f; };
    return QColor::fromRgbF(channel(color.red), channel(color.green), channel(color.blue), channel(color.alpha));
}

}  // namespace

SectionInspector::SectionInspector(QWidget* parent)
    : QGroupBox(parent),
      mLayer(this),
      mTable(this),
      mHistogram(new HistogramView(this)),
      mShares(new SectionShareModel(this)),
      mList(new QTableView(this)) {
    setObjectName("sectionInspector");
    mHistogram->setObjectName("valueHistogram");
    mList->setObjectName("sectionShares");
    mList->setModel(mShares);
    mList->setSelectionMode(QAbstractItemView::NoSelection);
    mList->setShowGrid(false);
    mList->verticalHeader()->hide();
    mList->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    mList->horizontalHeader()->setHighlightSections(false);
    const int row = mList->fontMetrics().height() + 4;
    mList->verticalHeader()->setDefaultSectionSize(row);
    mList->setFixedHeight(ROWS * row + mList->horizontalHeader()->sizeHint().height() + 2 * mList->frameWidth());
    auto* column = new QVBoxLayout(this);
    column->addWidget(mHistogram);
    column->addWidget(mList);
    mList->setMouseTracking(true);
    mList->viewport()->installEventFilter(this);
    connect(mList, &QTableView::entered, this,
            [this](const QModelIndex& index) { highlight(mShares->sectionAt(index.row())); });
    connect(mHistogram, &HistogramView::sectionHovered, this, &SectionInspector::highlight);
    mRefresh.setSingleShot(true);
    connect(&mRefresh, &QTimer::timeout, this, &SectionInspector::refresh);
    setTexts();
}

SectionInspector::~SectionInspector() = default;

LyrColoredLayer* SectionInspector::layer() const {
    return dynamic_cast<LyrColoredLayer*>(mLayer.get());
}

void SectionInspector::setLayer(LyrColoredLayer* layer) {
    if (mLayer.get() != layer && mOrder) {
        mOrder->disconnect(this);
        mOrder.reset();
    }
    if (mLayer.get() != layer) {
        highlight(-1);
    }
    mLayer = layer;
    mTable = layer ? layer->table() : nullptr;
    refresh();
}

void SectionInspector::refresh() {
    LyrColoredLayer* shown = layer();
    // Sorting takes memory: not before somebody looks.
    if (shown && !mOrder && isVisible()) {
        mOrder = shown->valueOrder();
        connect(mOrder.get(), &ValueOrder::finished, this, &SectionInspector::refresh);
    }
    const std::shared_ptr<const LyrSortedValues> values = mOrder ? mOrder->values() : nullptr;
    const auto* table = dynamic_cast<const LyrColorLookupTable*>(mTable.get());
    const std::vector<float> boundaries = lysBoundaries(table);
    auto shares = std::make_shared<LyrSectionShares>();
    if (!values || !values->shares(boundaries, *shares)) {
        shares.reset();
    }
    const auto coloring = [this](float value) {
        return colorOf(dynamic_cast<const LyrColorLookupTable*>(mTable.get()), value);
    };
    mHistogram->setTable(boundaries, coloring);
    QString message;
    if (mOrder) {
        message = !mOrder->isFinished() ? tr("Values are being counted…")
                  : values              ? tr("There are no values.")
                                        : mOrder->error();
    }
    mHistogram->setValues(values, message);
    mShares->setTable(boundaries, lyrGetValue<Lyrenum>(table, Lyr::Quantity, Lyr::Number), std::move(shares), coloring);
}

void SectionInspector::watch(LyqColorLookupTableWidget* bar) {
    mBar = bar;
    if (bar) {
        bar->installEventFilter(this);
        connect(bar, &QObject::destroyed, this, [this] { mBar = nullptr; });
    }
}

void SectionInspector::highlight(int section) {
    if (LyrColoredLayer* shown = layer()) {
        shown->setHighlightedSection(section);
    }
    mHistogram->setToolTip(mShares->description(section));
    if (mBar) {
        mBar->setToolTip(mShares->description(section));
    }
}

/** The section at a height of the bar, which stands upright; -1 above and below it. */
int SectionInspector::sectionOfBar(int y) const {
    const std::vector<float> boundaries = lysBoundaries(dynamic_cast<const LyrColorLookupTable*>(mTable.get()));
    if (boundaries.empty()) {
        return -1;
    }
    const int beyond = mBar->getVirtualBorderSectionSize();
    if (y > mBar->realToWidget(boundaries.front()) + beyond || y < mBar->realToWidget(boundaries.back()) - beyond) {
        return -1;
    }
    const auto above = std::partition_point(boundaries.begin(), boundaries.end(),
                                            [&](float value) { return mBar->realToWidget(value) >= y; });
    return static_cast<int>(above - boundaries.begin());
}

bool SectionInspector::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Leave && (watched == mBar || watched == mList->viewport())) {
        highlight(-1);
    } else if (event->type() == QEvent::MouseMove && watched == mBar) {
        highlight(sectionOfBar(static_cast<QMouseEvent*>(event)->position().toPoint().y()));
    }
    return QGroupBox::eventFilter(watched, event);
}

bool SectionInspector::iocCallback(Message& message) {
    if (message.getInitialSender() != mLayer.get() && !mRefresh.isActive()) {
        mRefresh.start(0);
    }
    return LyrIOC::iocCallback(message);
}

void SectionInspector::showEvent(QShowEvent* event) {
    QGroupBox::showEvent(event);
    refresh();
}

void SectionInspector::hideEvent(QHideEvent* event) {
    QGroupBox::hideEvent(event);
    highlight(-1);
}

void SectionInspector::changeEvent(QEvent* event) {
    QGroupBox::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        setTexts();
    }
}

void SectionInspector::setTexts() {
    setTitle(tr("Values"));
    mHistogram->setAccessibleName(tr("Histogram of the values"));
    mList->setAccessibleName(tr("Shares of the sections"));
}
