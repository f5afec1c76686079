#pragma once

#include <analysis/LysAnalysisExport.h>
#include <analysis/TolerancePresets.h>
#include <lys_core/LyqComboBox.h>

#include <QPointer>

class LyqPresetNotifier;
class LyrColorLookupTable;

/** Chooses the table that defects are judged by: the layer's own, or a tolerance table among the presets. */
class LYS_ANALYSIS_EXPORT ToleranceChooser : public LyqComboBox {
    Q_OBJECT

public:
    explicit ToleranceChooser(QWidget* parent = nullptr);

    /** The chosen preset's table; null: the layer's own. */
    LyrColorLookupTable* tolerance() const;
    /** Fills the list anew: before it opens, and after each change of the presets. A chosen preset that is gone leaves
     * the layer's own table. */
    void refresh();
    void showPopup() override;

Q_SIGNALS:
    /** Another table judges, or the chosen one was saved anew. */
    void toleranceChanged();

protected:
    void changeEvent(QEvent* event) override;

private:
    void follow();
    void fill();
    void choose(int index);
    void take(const LyrString& name, Lyrenum kind);

    TolerancePresets mPresets;
    LyrString mName;  ///< null: the layer's own
    Lyrenum mKind{-1};
    LyrObjectPtr mTable;
    QPointer<LyqPresetNotifier> mNotifier;
};
