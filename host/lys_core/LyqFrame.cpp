#include <lys_core/LyqFrame.h>

#include <QCoreApplication>
#include <QPalette>
#include <QResizeEvent>

LyqFrame::LyqFrame(QWidget* parent, const char* name) : QFrame(parent) {
    setObjectName(QString::fromUtf8(name));
}

void LyqFrame::setContent(QWidget* content) {
    mContent = content;
    if (content) {
        content->setParent(this);
        content->setGeometry(contentsRect());
    }
}

void LyqFrame::setBackgroundColor(const QColor& color) {
    QPalette colors = palette();
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        colors.setColor(group, backgroundRole(), color);
    }
    setPalette(colors);
    setAutoFillBackground(true);
}

void LyqFrame::resizeAtOnce(const QSize& size) {
    resize(size);
    if (!mContent) {
        return;
    }
    const QRect inside = contentsRect();
    if (auto* frame = qobject_cast<LyqFrame*>(mContent.data())) {
        frame->move(inside.topLeft());
        frame->resizeAtOnce(inside.size());
        return;
    }
    const QSize before = mContent->size();
    mContent->setGeometry(inside);
    if (before != mContent->size() && !mContent->isVisible()) {
        QResizeEvent event(mContent->size(), before);
        QCoreApplication::sendEvent(mContent, &event);
    }
}

void LyqFrame::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    if (mContent) {
        mContent->setGeometry(contentsRect());
    }
}

LyqAnnotationFrame::LyqAnnotationFrame(QWidget* parent, const char* name) : LyqFrame(parent, name) {
    setFrameShape(QFrame::NoFrame);
}
