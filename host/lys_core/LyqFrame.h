#pragma once

#include <lys_core/LysCoreExport.h>

#include <QColor>
#include <QFrame>
#include <QPointer>

/** A frame that holds one widget and gives it all of its place. It uses no layout: layouts of hidden widgets answer
 * late, and frames of annotations stay hidden. */
class LYS_CORE_EXPORT LyqFrame : public QFrame {
    Q_OBJECT

public:
    explicit LyqFrame(QWidget* parent = nullptr, const char* name = nullptr);

    /** Takes over a widget; the one before stays a child, unplaced. */
    void setContent(QWidget* content);
    QWidget* getContent() const { return mContent; }

    /** Background for all states of the widget, so that it is the same while the window is disabled or inactive. */
    void setBackgroundColor(const QColor& color);

    /** Sets the size of this frame and of what it holds, frames in it included, at once. Hidden widgets hear of it too.
     */
    void resizeAtOnce(const QSize& size);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QPointer<QWidget> mContent;
};

/** The frame in which an annotation's widget is rendered into an image: without shape and margins. */
class LYS_CORE_EXPORT LyqAnnotationFrame : public LyqFrame {
    Q_OBJECT

public:
    explicit LyqAnnotationFrame(QWidget* parent = nullptr, const char* name = nullptr);
};
