#pragma once

#include <colortable/LysColortableExport.h>
#include <colortable/editor/LyqColorLookupTableRenderSettingsEditorWidgetUI.h>
#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrRGBA.h>
#include <lys_core/LyqObjectEditorHandler.h>

#include <memory>

/** Edits one or several legend settings at once. Controls show the current object and write their property to every
 * edited object, each write an undo step; the steps of one gesture (typing a caption, trying colours, holding an arrow
 * of a number) merge into one. */
class LYS_COLORTABLE_EXPORT LyqColorLookupTableRenderSettingsEditorWidget
    : public LyqColorLookupTableRenderSettingsEditorWidgetUI,
      public LyqObjectEditorHandler,
      public LyrIOC {
    Q_OBJECT

public:
    explicit LyqColorLookupTableRenderSettingsEditorWidget(QWidget* parent = nullptr, const char* name = nullptr);
    ~LyqColorLookupTableRenderSettingsEditorWidget() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    /** True if every path ends at legend settings; no paths are fine. */
    bool checkObjects(const LyrObjectPath* paths, long long count) const override;
    /** The current object stays current if it is among the new ones, else the first of them is. */
    void setObjects(const LyrObjectPath* paths, long long count) override;
    QWidget* getWidget() override { return this; }

    bool iocCallback(Message& message) override;

    using QWidget::setFont;

public Q_SLOTS:
    /** Thickness in pixels, truncated. */
    void setThickness(double pixels);
    /** Stretch in percent. */
    void setSize(double percent);
    void setPosition(int index);
    void setAlignment(int index);
    void setTextPosition(int index);
    void setTextAlignment(int index);
    /** The caption as it is edited, placeholders by their names. */
    void setDescription(const QString& editText);
    void setColor(const LyrRGBAf& color);
    void setOutlineColor(const LyrRGBAf& color);
    void setHasOutline(int index);
    void setRendering(int index);
    /** Lets the user choose a font, beginning with the current object's. */
    void setFont();
    /** Restores all defaults of the current object, and of no other. */
    void resetToDefault();

protected Q_SLOTS:
    void languageChange() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Private;
    void connectControls();
    void sync();
    void restoreColors(Lyrenum property);
    static QString actionName();
    static QString describeFont(const QFont& font);
    void syncPlacement(const LyrObject* object);
    void syncText(const LyrObject* object);
    template <class Write>
    void writeEach(const QWidget* gestureOwner, Write write);
    template <class T>
    void writeAll(const QWidget* gestureOwner, Lyrenum property, const T& value);

    std::unique_ptr<Private> d;
};
