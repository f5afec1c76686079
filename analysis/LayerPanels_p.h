#pragma once

#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrObjectIOCPtr.h>

#include <QScrollArea>

class LyqColorLookupTableEditor;
class LyqColorLookupTableOptionsWidget;
class LyqObjectEditorHandler;
class LyrColoredLayer;
class SectionInspector;

/** A panel that shows something of the session's active layer, whichever that is. */
class LayerPanel : public QScrollArea, public LyrIOC {
    Q_OBJECT

public:
    explicit LayerPanel(QWidget* parent);

    /** Another table or other settings may be linked to the layer at any time. */
    bool iocCallback(Message& message) override;

    QSize sizeHint() const override;

protected:
    /** Shows a layer, null for none, in place of the one before. */
    virtual void showLayer(LyrColoredLayer* layer) = 0;
    /** To be called when the panel is complete. */
    void follow();
    void setContent(QWidget* content);

private:
    LyrObjectIOCPtr mLayer;
};

/** The table of the active layer: how the values are spread over it, its sections, and what belongs to the table as a
 * whole. */
class ColorsPanel : public LayerPanel {
    Q_OBJECT

public:
    explicit ColorsPanel(QWidget* parent);

protected:
    void showLayer(LyrColoredLayer* layer) override;

private:
    SectionInspector* mInspector;
    LyqColorLookupTableEditor* mEditor;
    LyqColorLookupTableOptionsWidget* mOptions;
};

/** The look of the active layer's legend. */
class LegendPanel : public LayerPanel {
    Q_OBJECT

public:
    explicit LegendPanel(QWidget* parent);

protected:
    void showLayer(LyrColoredLayer* layer) override;

private:
    LyqObjectEditorHandler* mEditor;
};
