#pragma once

#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObject.h>
#include <lys_core/LysCoreExport.h>

#include <QImage>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QRect>
#include <QString>

class LyqAnnotationGroup;
class LyqFrame;

/** Something that stands over a view: a legend, a note. Its widget is either shown over the view or, out of sight,
 * rendered into an image that a rendering driver draws. Place and size are the annotation's own numbers, in pixels of
 * the view. */
class LYS_CORE_EXPORT LyqAnnotation : public QObject, public LyrObject {
    Q_OBJECT

public:
    enum RenderingModeEnum { LiveWidget = 0, RenderedImage = 1 };

    /** The background of images: drivers make this colour transparent. */
    static constexpr QRgb KEY_COLOR = 0xff000008u;

    LyqAnnotation(LyqAnnotationGroup* group, const char* name);
    ~LyqAnnotation() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;
    QObject* qObject() { return this; }
    /** Passes changes of what the annotation refers to on to its owners, so that the view draws it anew. */
    bool iocCallback(Message& message) override;

    /** The frame that is rendered, null once it is gone. */
    virtual LyqFrame* widget() const = 0;
    virtual RenderingModeEnum getRenderingMode() const;
    /** The user begins to drag the annotation. */
    virtual void beginUserMove();

    void setMovingEnabled(bool on) { mMovingEnabled = on; }
    bool isMovingEnabled() const { return mMovingEnabled; }

    QString getName() const { return mName; }
    void setGroup(LyqAnnotationGroup* group);
    LyqAnnotationGroup* getGroup() const;

    /** In the rendered mode this is a mark for drivers; no widget is shown or hidden. */
    void setVisible(bool on);
    bool isVisible() const { return mVisible; }

    void setPosition(const QPoint& position);
    /** Sets the size of the frames and of what they hold, at once. */
    void setFixedSize(const QSize& size);
    QRect frameGeometry() const { return QRect(mPosition, mSize); }
    /** The hints of the widget in the frames, nothing added; (0, 0) without one. */
    QSize sizeHint() const;
    QSize minimumSizeHint() const;

    /** The widget as 32-bit RGB image on the key colour, of the annotation's size, at least 1 by 1; null once the frame
     * is gone. Rendered when it was never before, or for another size. */
    QImage getImage();
    /** Renders the image anew. */
    void updateImage();

protected:
    /** The frame that holds widget(): it is resized with the annotation. */
    virtual LyqFrame* outerFrame() const;
    QWidget* innerWidget() const;

private:
    QString mName;
    QPointer<LyqAnnotationGroup> mGroup;
    QPoint mPosition;
    QSize mSize{1, 1};
    QImage mImage;
    bool mVisible = false;
    bool mMovingEnabled = true;
    LyrObjectSoftLinkOP mObject;  ///< what the annotation shows
};
