#include <lyr_core/LyrMetaClass.h>
#include <lyr_opengl/LyrViewMarks.h>
#include <lys_core/LyqSceneWidget.h>
#include <lys_core/LyqSliceWidget.h>
#include <workbench/ViewGrid.h>

#include <QApplication>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>

namespace workbench {

namespace {

/** Views come from the host's factory, so that plug-ins hear of them. */
template <class View>
View* makeView() {
    return dynamic_cast<View*>(View::metaClass().create());
}

QColor axisColor(int axis) {
    const LyrRGBA<float> color = LyrRendering::planeColor(axis);
    return QColor::fromRgbF(color.red, color.green, color.blue);
}

}  // namespace

ViewGrid::ViewGrid(QWidget* parent) : QWidget(parent) {
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    addSliceView(2, tr("Slice across z"));
    addSliceView(1, tr("Slice across y"));
    addSliceView(0, tr("Slice across x"));
    mScene = makeView<LyqSceneWidget>();
    addCell(mScene, tr("3D"), QColor());
    connectView(mScene);
    for (int i = 0; i < 4; ++i) {
        layout->addWidget(mCells[static_cast<std::size_t>(i)], i / 2, i % 2);
        layout->setRowStretch(i / 2, 1);
        layout->setColumnStretch(i % 2, 1);
    }
}

ViewGrid::~ViewGrid() = default;

LyqSliceWidget* ViewGrid::sliceView(int axis) const {
    return axis >= 0 && axis < 3 ? mSlices[static_cast<std::size_t>(axis)] : nullptr;
}

QWidget* ViewGrid::addCell(LyqCameraWidget* view, const QString& title, const QColor& color) {
    auto* cell = new QWidget(this);
    auto* layout = new QGridLayout(cell);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* heading = new QLabel(title, cell);
    heading->setObjectName("heading");
    heading->setContentsMargins(8, 3, 8, 3);
    heading->setTextFormat(Qt::RichText);
    if (color.isValid()) {
        heading->setText(QString("<span style=\"color:%1\">&#9632;</span>&nbsp; %2").arg(color.name(), title));
    }
    layout->addWidget(heading, 0, 0, 1, 2);
    layout->addWidget(view, 1, 0);
    layout->setRowStretch(1, 1);
    layout->setColumnStretch(0, 1);
    view->setMinimumSize(80, 80);
    view->setFocusPolicy(Qt::StrongFocus);
    mCells.push_back(cell);
    mViews.push_back(view);
    return cell;
}

void ViewGrid::addSliceView(int axis, const QString& title) {
    auto* view = makeView<LyqSliceWidget>();
    view->setSliceAxis(axis);
    mSlices[static_cast<std::size_t>(axis)] = view;
    QWidget* cell = addCell(view, title, axisColor(axis));
    auto* layout = static_cast<QGridLayout*>(cell->layout());
    auto* bar = new QScrollBar(Qt::Vertical, cell);
    bar->setObjectName("sliceBar");
    bar->setAccessibleName(title);
    auto* number = new QLabel(cell);
    number->setObjectName("sliceNumber");
    number->setContentsMargins(8, 3, 8, 3);
    number->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    layout->addWidget(number, 0, 0, 1, 2);
    layout->addWidget(bar, 1, 1);
    const auto follow = [bar, number](int index, int count) {
        const QSignalBlocker silent(bar);
        bar->setRange(0, count - 1);
        bar->setPageStep(std::max(count / 10, 1));
        bar->setValue(index);
        number->setText(tr("%1 of %2").arg(index + 1).arg(count));
    };
    connect(view, &LyqSliceWidget::sliceChanged, bar, follow);
    connect(bar, &QScrollBar::valueChanged, view, &LyqSliceWidget::setSliceIndex);
    follow(view->getSliceIndex(), view->getSliceCount());
    connectView(view);
}

void ViewGrid::connectView(LyqCameraWidget* view) {
    view->installEventFilter(this);
    connect(view, &LyqCameraWidget::positionHovered, this, &ViewGrid::positionHovered);
    connect(view, &LyqCameraWidget::maximizeRequested, this,
            [this, view] { setMaximizedView(mMaximized == view ? nullptr : view); });
}

bool ViewGrid::eventFilter(QObject* watched, QEvent* event) {
    // A click, not the end of a drag that turned the scene.
    if (event->type() == QEvent::MouseButtonPress) {
        mPressed = static_cast<QMouseEvent*>(event)->pos();
    } else if (event->type() == QEvent::MouseButtonRelease) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        const bool isClick = (mouse->pos() - mPressed).manhattanLength() < QApplication::startDragDistance();
        // The view is asked: a click may come without a move before it, and after the pointer has left.
        auto* view = qobject_cast<LyqCameraWidget*>(watched);
        LyrVector3<float> place;
        if (isClick && view && mouse->button() == Qt::LeftButton && view->findPlace(mouse->position(), place)) {
            Q_EMIT positionPicked(place);
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ViewGrid::setMaximizedView(LyqCameraWidget* view) {
    mMaximized = view;
    auto* layout = static_cast<QGridLayout*>(this->layout());
    for (std::size_t i = 0; i < mCells.size(); ++i) {
        mCells[i]->setVisible(!view || mViews[i] == view);
    }
    // A row or column without a visible cell gives its place away.
    for (int line = 0; line < 2; ++line) {
        const auto isShown = [&](std::size_t cell) { return !mCells[cell]->isHidden(); };
        const auto first = static_cast<std::size_t>(line);
        layout->setRowStretch(line, isShown(2 * first) || isShown(2 * first + 1) ? 1 : 0);
        layout->setColumnStretch(line, isShown(first) || isShown(first + 2) ? 1 : 0);
    }
    if (view) {
        view->setFocus();
    }
}

void ViewGrid::resetViews() {
    for (LyqCameraWidget* view : mViews) {
        view->resetView();
    }
}

void ViewGrid::finishFrames() {
    for (LyqCameraWidget* view : mViews) {
        view->finishFrames();
    }
}

}  // namespace workbench
