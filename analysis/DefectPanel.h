#pragma once

#include <analysis/DefectTableModel.h>
#include <analysis/LysAnalysisExport.h>
#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrVector3.h>

#include <QWidget>

class LyrDefectLayer;
class QLabel;
class QPushButton;
class QTableView;
class QTimer;
class ToleranceChooser;

/** The defects that were found last, with their totals. A selected one is marked, and the views go there; one that is
 * clicked in a view becomes the selected one. */
class LYS_ANALYSIS_EXPORT DefectPanel : public QWidget, public LyrIOC {
    Q_OBJECT

public:
    explicit DefectPanel(QWidget* parent);

    QSize sizeHint() const override;
    /** Changes of the table may change verdicts. */
    bool iocCallback(Message& message) override;

private:
    void follow();
    void updateTotals();
    void updateVerdicts();
    void judge();
    void select(int row);
    void pick(const LyrVector3<float>& position);
    void save();

    LyrDefectLayer* mLayer = nullptr;  ///< the session holds it
    LyrObjectIOCPtr mTableListened;    ///< its table
    LyrObjectIOCPtr mListened;         ///< the same, which tells of changes
    QTimer* mVerdictTimer;
    DefectTableModel* mModel;
    QTableView* mTable;
    QLabel* mTotals;
    QLabel* mToleranceTitle;
    ToleranceChooser* mTolerance;
    QPushButton* mSave;
    LyqUnitConverter mVolume;
    bool mPicking = false;
};
