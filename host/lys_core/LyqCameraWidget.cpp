#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_opengl/LyrCamera.h>
#include <lyr_opengl/LyrViewScene.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqCameraWidget.h>
#include <lys_core/LyqOpenGLProbe_p.h>
#include <lys_core/LyqScaling.h>
#include <lys_core/LyqViewSurface_p.h>
#include <lys_core/LyrWorkspace.h>

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLoggingCategory>
#include <QMouseEvent>
#include <QResizeEvent>
#include <QSurfaceFormat>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

/** Frames of a chain: one, and those that follow because it changed something. */
constexpr int LONGEST_CHAIN = 4;

constexpr LyrRGBA<float> BACKGROUND{0.137f, 0.145f, 0.157f, 1.0f};
constexpr const char* PROBLEM_STYLE = "background: #232528; color: #c8ccd2; padding: 16px;";

/** Zoom of one step of the wheel, and of one pixel at 96 dots per inch. */
constexpr double WHEEL_ZOOM = 1.15;
constexpr double DRAG_ZOOM = 1.01;

/** The place in its chain of the frame that is under way in any view, -1 for none. What it changes in other views is a
 * part of the chain, so that views which change each other come to an end. */
int sPlaceInChain = -1;
/** The view of that frame, for comparison only. */
const void* sViewInChain = nullptr;
/** Counts the changes that come from outside of frames: each may begin a chain. */
unsigned long long sChains = 1;

class ChainScope {
public:
    ChainScope(int place, const void* view) : mPlaceBefore(sPlaceInChain), mViewBefore(sViewInChain) {
        sPlaceInChain = place;
        sViewInChain = view;
    }
    ~ChainScope() {
        sPlaceInChain = mPlaceBefore;
        sViewInChain = mViewBefore;
    }
    ChainScope(const ChainScope&) = delete;
    ChainScope& operator=(const ChainScope&) = delete;

private:
    int mPlaceBefore;
    const void* mViewBefore;
};

QEvent::Type frameEvent() {
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

/** Properties that decide which nodes and drivers there are. */
bool isStructure(Lyrenum property) {
    return property == Lyr::RenderedObjectList || property == Lyr::RenderPlugin || property == Lyr::Rendering ||
           property == Lyr::Object;
}

bool contains(const std::vector<LyrObjectLink>& links, const LyrObjectLink& link) {
    return std::find(links.begin(), links.end(), link) != links.end();
}

Q_LOGGING_CATEGORY(sViews, "lys.views")

/** Tells on the log, once for each text. */
void logOnce(const QString& text) {
    static QString last;
    if (text != last) {
        last = text;
        qCWarning(sViews, "%s", qUtf8Printable(text));
    }
}

}  // namespace

struct LyqCameraWidget::Private {
    Private(LyqCameraWidget& view, LyrObject* camera)
        : scene(camera, &view), application(&view, &LyqApplication::instance().object()), workspace(&view) {}

    LyrSceneGraph::ViewScene scene;
    LyrObjectIOCPtr application;
    LyrObjectIOCPtr workspace;
    std::vector<LyrObjectLink> layers;  ///< those that the view put into the camera's list
    std::vector<LyrObjectPtr> heldLayers;
    QPointer<LyqViewSurface> surface;
    QPointer<QLabel> label;

    bool pending = false;                ///< a frame is posted
    int placeInChain = 0;                ///< of that frame
    unsigned long long lastPlaceIn = 0;  ///< value of sChains when a frame had the last place
    bool updating = false;               ///< the view writes its camera's numbers itself
    bool toldOfChain = false;

    Qt::MouseButton dragged = Qt::NoButton;
    QPointF pressed;
    QPointF last;
    QPointF hovered;
    bool isHovered = false;
};

void LyqCameraWidget::prepareOpenGL() {
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    // No version: asked for one from 3.0 on, toolkits give contexts without fixed functions.
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setDepthBufferSize(24);
    QSurfaceFormat::setDefaultFormat(format);
}

QString LyqCameraWidget::openGLProblem() {
    return LyqOpenGLProbe::problem();
}

LyqCameraWidget::LyqCameraWidget(Lyrenum cameraProperty) {
    addProperty(cameraProperty, &mCamera);
    const LyrObjectPtr made(new LyrCamera);
    mCamera.setValue(LyrObjectLink(made.get(), nullptr, -1));
    d = std::make_unique<Private>(*this, made.get());
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setContextMenuPolicy(Qt::PreventContextMenu);  // the right button drags
    setMinimumSize(1, 1);
    setAutoFillBackground(false);
    makeSurface();
    followWorkspace();
    made->prepareRoles();
}

LyqCameraWidget::~LyqCameraWidget() {
    // Messages that its end sends find no view any more.
    const std::unique_ptr<Private> gone = std::move(d);
    QCoreApplication::removePostedEvents(this, frameEvent());
    gone->scene.setSurface(nullptr);
    delete gone->surface.data();
}

const LyrSceneGraph::CameraTransform& LyqCameraWidget::cameraTransform() const {
    return d->scene.getCameraNode()->transform();
}

LyrSceneGraph::CameraTransform& LyqCameraWidget::transform() {
    return d->scene.getCameraNode()->transform();
}

LyrSceneGraph::ViewScene& LyqCameraWidget::scene() const {
    return d->scene;
}

LyrWorkspace* LyqCameraWidget::workspace() const {
    return static_cast<LyrWorkspace*>(d->workspace.get());
}

bool LyqCameraWidget::hasOpenGL() const {
    return d->surface != nullptr;
}

void LyqCameraWidget::makeSurface() {
    const QString problem = openGLProblem();
    if (!problem.isEmpty()) {
        showProblem(problem);
        return;
    }
    d->surface = new LyqViewSurface(
        this, [this] { drawFrame(); }, [this] { d->scene.releaseContext(); });
    connect(d->surface, &LyqViewSurface::unusable, this, &LyqCameraWidget::showProblem, Qt::QueuedConnection);
    d->scene.setSurface(d->surface->access());
}

void LyqCameraWidget::showProblem(const QString& problem) {
    logOnce(problem);
    d->scene.setSurface(nullptr);
    if (d->surface) {
        d->surface->deleteLater();
        d->surface->hide();
        d->surface = nullptr;
    }
    d->label = new QLabel(problem, this);
    d->label->setAlignment(Qt::AlignCenter);
    d->label->setWordWrap(true);
    d->label->setStyleSheet(QLatin1String(PROBLEM_STYLE));
    d->label->setAttribute(Qt::WA_TransparentForMouseEvents);
    d->label->setMinimumSize(1, 1);
    d->label->setGeometry(rect());
    d->label->show();
}

// Frames

void LyqCameraWidget::scheduleFrame() {
    if (sPlaceInChain < 0) {
        ++sChains;
    }
    int place = sPlaceInChain + 1;
    if (place >= LONGEST_CHAIN && sViewInChain != this && d->lastPlaceIn != sChains) {
        place = LONGEST_CHAIN - 1;  // the last frame of another view changed this one, which had none of its own
    }
    scheduleFrameAt(place);
}

void LyqCameraWidget::scheduleFrameAt(int place) {
    if (place >= LONGEST_CHAIN) {
        if (!d->toldOfChain) {
            d->toldOfChain = true;
            qWarning("%s",
                     qUtf8Printable(tr("A view changes with every frame: a handler or a layer reports a change in "
                                       "each update. The view is not updated until something else changes.")));
        }
        return;
    }
    d->placeInChain = d->pending ? std::min(d->placeInChain, place) : place;
    if (!d->pending) {
        d->pending = true;
        // After the events that are posted already: what they change belongs to this frame.
        QCoreApplication::postEvent(this, new QEvent(frameEvent()), Qt::LowEventPriority);
    }
}

void LyqCameraWidget::redraw() {
    d->scene.requestDraw();
    scheduleFrame();
}

void LyqCameraWidget::runFrame() {
    d->pending = false;
    const int place = d->placeInChain;
    const ChainScope chain(place, this);
    if (place == LONGEST_CHAIN - 1) {
        d->lastPlaceIn = sChains;
    }
    if (updateCamera()) {
        d->scene.requestDraw();
    }
    const QPointer<LyqCameraWidget> alive(this);
    const LyrSceneGraph::ViewScene::Preparation result = d->scene.prepare();
    if (!alive) {
        return;
    }
    if (result.changed) {
        scheduleFrameAt(place + 1);
    } else if (!d->pending) {
        d->toldOfChain = false;
    }
    if (result.mustDraw && d->surface) {
        d->surface->update();
    }
    if (d->isHovered && result.changed) {
        hover(d->hovered);
    }
}

void LyqCameraWidget::finishFrames() {
    const QPointer<LyqCameraWidget> alive(this);
    placeChildren();  // a hidden view was not told of its size
    QCoreApplication::removePostedEvents(this, frameEvent());
    d->placeInChain = 0;
    do {
        runFrame();
        if (!alive) {
            return;
        }
        QCoreApplication::removePostedEvents(this, frameEvent());
    } while (d->pending);
}

QImage LyqCameraWidget::getImage() {
    const QPointer<LyqCameraWidget> alive(this);
    finishFrames();
    if (!alive || !d->surface || d->surface->framebufferSize().isEmpty()) {
        return {};
    }
    QImage image = d->surface->grabFramebuffer().convertToFormat(QImage::Format_RGB32);
    image.setDevicePixelRatio(1.0);
    return image;
}

/** Tells the camera the view's size and resolution. True if the size is another. */
bool LyqCameraWidget::updateCamera() {
    const QSize size = this->size() * devicePixelRatioF();
    const LyrVector2<float> pixels{static_cast<float>(size.width()), static_cast<float>(size.height())};
    const auto ratio = static_cast<float>(devicePixelRatioF());
    const LyrVector2<float> dotsPerInch{static_cast<float>(logicalDpiX()) * ratio,
                                        static_cast<float>(logicalDpiY()) * ratio};
    d->updating = true;
    lyrSetValue(camera(), Lyr::DotsPerInch, dotsPerInch);
    d->updating = false;
    if (transform().getViewportSize() == pixels) {
        return false;
    }
    transform().setViewport({0.0f, 0.0f}, pixels);
    return true;
}

void LyqCameraWidget::drawFrame() {
    updateCamera();  // the toolkit draws by itself as well, for example when the view was resized
    d->scene.draw(BACKGROUND, [this] { drawMarks(); });
    Q_EMIT frameDrawn();
}

// Messages

bool LyqCameraWidget::iocCallback(Message& message) {
    if (d && !d->updating) {
        const Lyrenum property = message.getPropertyID();
        if (d->application == message.getSender()) {
            if (property == Lyr::Workspace) {
                followWorkspace();
            }
            if (property == Lyr::Workspace || property == Lyr::DisplayUnitList) {
                scheduleFrame();
            }
        } else if (d->workspace == message.getSender()) {
            if (property == Lyr::LayerList) {
                followLayers();
            }
            workspaceChanged(property);
        } else {
            if (isStructure(property)) {
                d->scene.synchronize();
            }
            scheduleFrame();
        }
    }
    return LyqWorkspaceWidget::iocCallback(message);
}

void LyqCameraWidget::followWorkspace() {
    d->workspace = LyqApplication::instance().workspace();
    followLayers();
    workspaceChanged(-1);
}

/** Lists the workspace's layers after whatever else the camera renders. */
void LyqCameraWidget::followLayers() {
    std::vector<LyrObjectLink> wanted;
    if (const LyrWorkspace* from = workspace()) {
        const auto layers = from->layers().view();
        wanted.assign(layers.begin(), layers.end());
    }
    LyrValueArrayOPCache<LyrObjectLink> list;
    list.load(camera(), Lyr::RenderedObjectList);
    std::erase_if(list.items(),
                  [&](const LyrObjectLink& link) { return contains(d->layers, link) || contains(wanted, link); });
    list.items().insert(list.items().end(), wanted.begin(), wanted.end());
    std::vector<LyrObjectPtr> held;
    held.reserve(wanted.size());
    for (const LyrObjectLink& link : wanted) {
        held.emplace_back(link.getLink());
    }
    list.store(camera(), Lyr::RenderedObjectList);
    d->layers = std::move(wanted);
    d->heldLayers = std::move(held);
}

void LyqCameraWidget::workspaceChanged(Lyrenum property) {
    const LyrWorkspace* shown = workspace();
    if (shown && property != Lyr::LayerList && property != Lyr::CrossPosition) {
        transform().setBox(shown->getSceneMin(), shown->getSceneMax());
    }
    redraw();
}

// Events

bool LyqCameraWidget::event(QEvent* event) {
    if (event->type() == frameEvent()) {
        if (d && isVisible()) {
            runFrame();
        } else if (d) {
            d->pending = false;  // shown again, it asks for a frame
        }
        return true;
    }
    const bool screenChanged = event->type() == QEvent::ScreenChangeInternal || event->type() == QEvent::PolishRequest;
    if (d && screenChanged) {
        scheduleFrame();
    }
    return LyqWorkspaceWidget::event(event);
}

void LyqCameraWidget::resizeEvent(QResizeEvent* event) {
    LyqWorkspaceWidget::resizeEvent(event);
    placeChildren();
    scheduleFrame();
}

void LyqCameraWidget::placeChildren() {
    for (QWidget* child : {static_cast<QWidget*>(d->surface), static_cast<QWidget*>(d->label)}) {
        if (child) {
            child->setGeometry(rect());
        }
    }
}

void LyqCameraWidget::showEvent(QShowEvent* event) {
    LyqWorkspaceWidget::showEvent(event);
    redraw();
}

LyrVector2<float> LyqCameraWidget::toFramebuffer(const QPointF& position) const {
    const QPointF pixels = position * devicePixelRatioF();
    return {static_cast<float>(pixels.x()), static_cast<float>(pixels.y())};
}

int LyqCameraWidget::scaledPixels(int pixels) const {
    const LyrVector2<float> resolution = lyrGetValue(camera(), Lyr::DotsPerInch, LyrVector2<float>());
    return LyqScaling::getScaledPixeli(resolution.x, pixels);
}

float LyqCameraWidget::depthAt(const QPointF& position) {
    const QPointF pixel = position * devicePixelRatioF();
    return d->surface ? d->surface->depthAt(QPoint(static_cast<int>(pixel.x()), static_cast<int>(pixel.y()))) : 1.0f;
}

void LyqCameraWidget::hover(const QPointF& position) {
    LyrVector3<float> place;
    d->hovered = position;
    d->isHovered = true;
    const bool inside = findPlace(position, place);
    Q_EMIT positionHovered(place, inside);
}

void LyqCameraWidget::resetView() {
    transform().fit();
    redraw();
}

void LyqCameraWidget::leftPressed(const QPointF&) {}

void LyqCameraWidget::mousePressEvent(QMouseEvent* event) {
    if (d->dragged != Qt::NoButton) {
        return;
    }
    d->dragged = event->button();
    d->pressed = d->last = event->position();
    if (d->dragged == Qt::LeftButton) {
        leftPressed(event->position());
    }
}

void LyqCameraWidget::mouseMoveEvent(QMouseEvent* event) {
    const LyrVector2<float> pixels = toFramebuffer(event->position() - d->last);
    d->last = event->position();
    if (d->dragged == Qt::LeftButton) {
        leftDragged(event->position(), pixels);
    } else if (d->dragged == Qt::MiddleButton) {
        transform().pan(pixels);
        redraw();
    } else if (d->dragged == Qt::RightButton) {
        const double steps = -double(pixels.y) * 10.0 / scaledPixels(10);
        transform().zoom(std::pow(DRAG_ZOOM, steps), toFramebuffer(d->pressed));
        redraw();
    }
    hover(event->position());
}

void LyqCameraWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == d->dragged) {
        d->dragged = Qt::NoButton;
    }
}

void LyqCameraWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        Q_EMIT maximizeRequested();
    }
}

void LyqCameraWidget::leaveEvent(QEvent* event) {
    d->isHovered = false;
    Q_EMIT positionHovered({}, false);
    LyqWorkspaceWidget::leaveEvent(event);
}

void LyqCameraWidget::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_R && event->modifiers() == Qt::NoModifier) {
        resetView();
    } else {
        LyqWorkspaceWidget::keyPressEvent(event);
    }
}

void LyqCameraWidget::zoomByWheel(const QWheelEvent& event) {
    transform().zoom(std::pow(WHEEL_ZOOM, event.angleDelta().y() / 120.0), toFramebuffer(event.position()));
    redraw();
}
