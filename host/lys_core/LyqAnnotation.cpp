#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lys_core/LyqAnnotation.h>
#include <lys_core/LyqAnnotationGroup.h>
#include <lys_core/LyqFrame.h>

#include <QPainter>

LyqAnnotation::LyqAnnotation(LyqAnnotationGroup* group, const char* name)
    : mName(QString::fromUtf8(name)), mGroup(group) {
    addProperty(Lyr::Object, &mObject);
}

LyqAnnotation::~LyqAnnotation() = default;

const LyrMetaClass& LyqAnnotation::metaClass() {
    static const LyrMetaClass meta("LyqAnnotation", sizeof(LyqAnnotation), &LyrObject::metaClass(), nullptr, "lys_core",
                                   0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyqAnnotation::getMetaClass() const {
    return metaClass();
}

bool LyqAnnotation::iocCallback(Message& message) {
    if (message.getLinkID() != Lyrenum(-1)) {
        passToOwners(message, this);
    }
    return LyrObject::iocCallback(message);
}

LyqAnnotation::RenderingModeEnum LyqAnnotation::getRenderingMode() const {
    return LiveWidget;
}

void LyqAnnotation::beginUserMove() {}

void LyqAnnotation::setGroup(LyqAnnotationGroup* group) {
    mGroup = group;
}

LyqAnnotationGroup* LyqAnnotation::getGroup() const {
    return mGroup;
}

void LyqAnnotation::setVisible(bool on) {
    mVisible = on;
    LyqFrame* frame = getRenderingMode() == LiveWidget ? outerFrame() : nullptr;
    if (frame) {
        frame->setVisible(on);
    }
}

void LyqAnnotation::setPosition(const QPoint& position) {
    mPosition = position;
    LyqFrame* frame = getRenderingMode() == LiveWidget ? outerFrame() : nullptr;
    if (frame) {
        frame->move(position);
    }
}

void LyqAnnotation::setFixedSize(const QSize& size) {
    mSize = size.expandedTo(QSize(1, 1));
    if (LyqFrame* frame = outerFrame()) {
        frame->resizeAtOnce(mSize);
    }
}

LyqFrame* LyqAnnotation::outerFrame() const {
    return widget();
}

QWidget* LyqAnnotation::innerWidget() const {
    const LyqFrame* frame = widget();
    return frame ? frame->getContent() : nullptr;
}

QSize LyqAnnotation::sizeHint() const {
    const QWidget* inner = innerWidget();
    return inner ? inner->sizeHint() : QSize(0, 0);
}

QSize LyqAnnotation::minimumSizeHint() const {
    const QWidget* inner = innerWidget();
    return inner ? inner->minimumSizeHint() : QSize(0, 0);
}

QImage LyqAnnotation::getImage() {
    if (mImage.size() != mSize) {
        updateImage();
    }
    return mImage;
}

void LyqAnnotation::updateImage() {
    LyqFrame* frame = widget();
    if (!frame) {
        mImage = QImage();
        return;
    }
    QImage image(mSize, QImage::Format_RGB32);
    image.fill(KEY_COLOR);
    frame->render(&image, QPoint(), QRegion(), QWidget::DrawWindowBackground | QWidget::DrawChildren);
    mImage = image;
}
