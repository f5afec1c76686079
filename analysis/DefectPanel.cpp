#include <analysis/AnalysisIdentifiers.h>
#include <analysis/DefectPanel.h>
#include <analysis/DefectSurface.h>
#include <analysis/LyrDefectLayer.h>
#include <analysis/ReportMessage_p.h>
#include <analysis/ToleranceChooser.h>
#include <analysis/compute/LyrAnalysisReport.h>
#include <analysis/compute/LyrDefectResult.h>
#include <analysis/compute/LyrVerdict.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqSession.h>
#include <lys_core/LyrWorkspace.h>

#include <QDockWidget>
#include <QFile>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

DefectPanel::DefectPanel(QWidget* parent)
    : QWidget(parent),
      mTableListened(this),
      mListened(this),
      mVerdictTimer(new QTimer(this)),
      mModel(new DefectTableModel(this)),
      mTable(new QTableView(this)),
      mTotals(new QLabel(this)),
      mToleranceTitle(new QLabel(tr("&Judged by:"), this)),
      mTolerance(new ToleranceChooser(this)),
      mSave(new QPushButton(tr("Save &Report…"), this)),
      mVolume(Lyr::Volume) {
    mTable->setObjectName("defectList");
    mTable->setAccessibleName(tr("Defects"));
    mTable->setModel(mModel);
    mTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    mTable->setSelectionMode(QAbstractItemView::SingleSelection);
    mTable->setSortingEnabled(true);
    mTable->sortByColumn(DefectTableModel::Number, Qt::AscendingOrder);
    mTable->verticalHeader()->hide();
    mTable->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    // Bold titles of the selected row would not fit their columns.
    mTable->horizontalHeader()->setHighlightSections(false);
    mTable->verticalHeader()->setDefaultSectionSize(mTable->fontMetrics().height() + 6);
    mTotals->setObjectName("defectTotals");
    mTotals->setWordWrap(true);
    mTotals->setTextInteractionFlags(Qt::TextSelectableByMouse);
    mSave->setObjectName("saveDefects");
    mToleranceTitle->setBuddy(mTolerance);
    mTolerance->setAccessibleName(tr("Tolerance table"));
    auto* foot = new QHBoxLayout;
    foot->addWidget(mTotals, 1);
    foot->addWidget(mToleranceTitle);
    foot->addWidget(mTolerance);
    foot->addWidget(mSave);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(mTable, 1);
    layout->addLayout(foot);
    connect(mTable->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) { select(current.row()); });
    connect(mSave, &QPushButton::clicked, this, &DefectPanel::save);
    connect(mTolerance, &ToleranceChooser::toleranceChanged, this, &DefectPanel::judge);
    connect(&mVolume, &LyqUnitConverter::displayUnitChanged, this, &DefectPanel::updateTotals);
    const LyqSession& session = LyqSession::instance();
    connect(&session, &LyqSession::layersChanged, this, &DefectPanel::follow);
    connect(&session, &LyqSession::picked, this, &DefectPanel::pick);
    // Many messages tell of one change: they are answered once.
    mVerdictTimer->setSingleShot(true);
    connect(mVerdictTimer, &QTimer::timeout, this, &DefectPanel::updateVerdicts);
    follow();
    updateTotals();
}

QSize DefectPanel::sizeHint() const {
    return {640, mTable->fontMetrics().height() * 13};
}

void DefectPanel::follow() {
    LyrDefectLayer* latest = nullptr;
    for (LyqLayer* layer : LyqSession::instance().layers()) {
        auto* defects = dynamic_cast<LyrDefectLayer*>(layer);
        latest = defects ? defects : latest;
    }
    if (latest == mLayer) {
        return;
    }
    mLayer = latest;
    mListened = latest;
    mTableListened = latest ? latest->table() : nullptr;
    if (latest && mTolerance->tolerance()) {
        latest->setToleranceTable(mTolerance->tolerance());
    }
    mModel->setLayer(latest);
    updateTotals();
    if (auto* dock = qobject_cast<QDockWidget*>(parentWidget()); dock && latest) {
        dock->show();
        dock->raise();
    }
}

bool DefectPanel::iocCallback(Message& message) {
    if (message.getPropertyID() != Lyr::MarkedDefect && message.getPropertyID() != Lyr::HighlightedSection) {
        mVerdictTimer->start(0);
    }
    return LyrIOC::iocCallback(message);
}

void DefectPanel::judge() {
    if (mLayer) {
        mLayer->setToleranceTable(mTolerance->tolerance());
        updateVerdicts();
    }
}

void DefectPanel::updateVerdicts() {
    mTableListened = mLayer ? mLayer->table() : nullptr;
    mModel->updateVerdicts();
    updateTotals();
}

void DefectPanel::updateTotals() {
    mSave->setEnabled(mLayer != nullptr);
    if (!mLayer) {
        mTotals->setText(tr("Defects are listed here after the analysis \"Defect volume\"."));
        return;
    }
    const LyrDefectResult& result = mLayer->result();
    QString text = (tr("Defects: %1   Volume: %2   Porosity: %3 %")
                        .arg(QLocale().toString(static_cast<qulonglong>(result.defects.size())),
                             mVolume.internalToDisplayString(result.defectVolume, LyqUnitConverter::WithUnit, 5),
                             QLocale().toString(result.porosity, 'g', 4)));
    if (const std::vector<LyrVerdict>& all = mModel->verdicts(); !all.empty()) {
        const auto count = [&](LyrVerdict verdict) {
            return QLocale().toString(static_cast<qlonglong>(std::count(all.begin(), all.end(), verdict)));
        };
        text += QString::fromUtf8("   ") +
                tr("Pass: %1   Warn: %2   Fail: %3")
                    .arg(count(LyrVerdict::Pass), count(LyrVerdict::Warn), count(LyrVerdict::Fail));
    }
    mTotals->setText(text);
}

void DefectPanel::select(int row) {
    const std::uint32_t number = mModel->numberAt(row);
    if (!mLayer || !mLayer->setMarkedDefect(number) || number == 0 || mPicking) {
        return;
    }
    if (LyrWorkspace* workspace = LyqApplication::instance().workspace()) {
        workspace->setCrossPosition(mLayer->centerOf(mLayer->result().defects[number - 1]));
    }
}

void DefectPanel::pick(const LyrVector3<float>& position) {
    const int row =
        mLayer && mLayer->isRendering() ? mModel->rowOf(DefectSurface::defectNear(mLayer->result(), position)) : -1;
    if (row >= 0) {
        // The views are where the user clicked, and stay there.
        mPicking = true;
        mTable->selectRow(row);
        mTable->scrollTo(mModel->index(row, 0));
        mPicking = false;
    }
}

void DefectPanel::save() {
    const QString file = QFileDialog::getSaveFileName(this, tr("Save Report"), QString::fromUtf8("defects.csv"),
                                                      tr("Reports (*.csv *.json)"));
    std::string error;
    if (!file.isEmpty() && mLayer &&
        !LyrAnalysisReport::save(QFile::encodeName(file).toStdString(), mLayer->result(), error, mLayer->verdicts())) {
        QMessageBox::warning(this, tr("The report is not written"), lysReportMessage(file, error));
    }
}
