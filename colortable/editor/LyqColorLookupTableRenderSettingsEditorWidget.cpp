#include <colortable/ColortableIdentifiers.h>
#include <colortable/editor/LyqColorLookupTableRenderSettingsEditorWidget.h>
#include <colortable/legend/LegendPicture.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/ApplicationPlaceholders.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqColorWidget.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LyqLineEdit.h>
#include <lys_core/LyqSpinBox.h>

#include <QDialog>
#include <QElapsedTimer>
#include <QFont>
#include <QFontDialog>
#include <QFontInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>
#include <vector>

namespace {

using Editor = LyqColorLookupTableRenderSettingsEditorWidget;

constexpr const char* SETTINGS_CLASS = "LyrColorLookupTableRenderSettings";
/** Notches of a wheel that follow each other faster belong together. In ms. */
constexpr qint64 WHEEL_PAUSE = 500;
/** Whole numbers up to here are exact in double. */
constexpr double LARGEST_THICKNESS = 9007199254740992.0;

Lyrenum descriptionTemplateId() {
    return Lyrenum("DescriptionTemplate", true);
}

class EditorFactory : public LyrMetaClass::Factory {
public:
    LyrClass* create(void* storage) const override { return storage ? new (storage) Editor() : new Editor(); }
    // A widget has an identity: it is neither copied nor assigned.
    LyrClass* createCopy(const LyrClass*, void*) const override { return nullptr; }
    bool assign(LyrClass*, const LyrClass*) const override { return false; }
    bool isStorable() const override { return false; }
};

LyrObject* lastObjectOf(const LyrObjectPath& path) {
    return path.getLink(-1).getLink();
}

Lyrenum choose(int index, std::initializer_list<Lyrenum> values, Lyrenum other) {
    const bool inside = index >= 0 && static_cast<std::size_t>(index) < values.size();
    return inside ? *(values.begin() + index) : other;
}

/** "On" is true, "Off" is false, anything else true. */
Lyrenum choiceOfOnOff(int index) {
    return choose(index, {1, 0}, 1);
}

int indexOfOnOff(const LyrObject* object, Lyrenum property) {
    return lyrGetValue<Lyrenum>(object, property, 1) != 0 ? 0 : 1;
}

QFont fontOf(const LyrObject* object) {
    return lys::legend::fontFromString(QString::fromUtf8(lyrGetValue<const char*>(object, Lyr::Font, "")));
}

}  // namespace

struct LyqColorLookupTableRenderSettingsEditorWidget::Private {
    std::vector<LyrObjectPath> paths;
    LyrObjectIOCPtrList objects;
    LyrObjectPtr current;

    /** The colours that the objects had when the user began to choose another. */
    struct OldColor {
        LyrObjectPtr object;
        LyrRGBAf color;
    };
    std::vector<OldColor> oldColors;
    /** Whether one was tried since. */
    bool colorTried = false;

    /** The control whose writes merge with its next ones, and the number of that gesture; null when a gesture has
     * ended. */
    const QWidget* gestureOwner = nullptr;
    int gesture = 0;
    /** The box of a number on which a key or button is down. */
    const QObject* heldBox = nullptr;
    QElapsedTimer lastWheel;

    void endGesture() { gestureOwner = nullptr; }

    std::vector<LyrObjectPtr> listObjects() const {
        std::vector<LyrObjectPtr> list;
        for (std::size_t i = 0; i < objects.size(); ++i) {
            list.emplace_back(objects.at(i));
        }
        return list;
    }

    void rememberColors(Lyrenum property) {
        endGesture();
        colorTried = false;
        oldColors.clear();
        for (const LyrObjectPtr& object : listObjects()) {
            oldColors.push_back({object, lyrGetValue(object.get(), property, LyrRGBAf())});
        }
    }

    /** Lets the steps that follow merge with those before if they are of the same control. */
    void enterGesture(const QWidget* owner) {
        LyqApplication& application = LyqApplication::instance();
        if (owner && owner == gestureOwner) {
            application.gestureResume(gesture);
        } else if (owner) {
            gesture = application.gestureBegin();
        }
        gestureOwner = owner;
    }

    /** An input to the box of a number: a key or button that goes down begins another gesture, which lasts until it
     * goes up; the notches of a wheel that is kept turning are one as well. */
    void hearBox(const QObject* box, const QEvent& event) {
        const bool repeated = event.type() == QEvent::KeyPress && static_cast<const QKeyEvent&>(event).isAutoRepeat();
        switch (event.type()) {
            case QEvent::KeyPress:
            case QEvent::MouseButtonPress:
                if (!repeated) {
                    endGesture();
                }
                heldBox = box;
                break;
            case QEvent::KeyRelease:
                if (static_cast<const QKeyEvent&>(event).isAutoRepeat()) {
                    break;
                }
                [[fallthrough]];
            case QEvent::MouseButtonRelease:
            case QEvent::FocusOut:
                endGesture();
                heldBox = nullptr;
                break;
            case QEvent::Wheel:
                if (!wheelTurns()) {
                    endGesture();
                }
                lastWheel.start();
                break;
            default:
                break;
        }
    }

    bool wheelTurns() const { return lastWheel.isValid() && lastWheel.elapsed() < WHEEL_PAUSE; }

    /** The owner of a gesture for a number: its box while something is held there. */
    const QWidget* boxOwner(const QWidget* box) const { return heldBox == box || wheelTurns() ? box : nullptr; }
};

LyqColorLookupTableRenderSettingsEditorWidget::LyqColorLookupTableRenderSettingsEditorWidget(QWidget* parent,
                                                                                             const char* name)
    : LyqColorLookupTableRenderSettingsEditorWidgetUI(parent,
                                                      name ? name : "LyqColorLookupTableRenderSettingsEditorWidget"),
      d(new Private) {
    connectControls();
}

// Whoever deletes a widget, hooks hear of it while it is still whole.
LyqColorLookupTableRenderSettingsEditorWidget::~LyqColorLookupTableRenderSettingsEditorWidget() {
    LyrMetaClass::prepareDestruction(this);
}

void LyqColorLookupTableRenderSettingsEditorWidget::connectControls() {
    connect(mThicknessSpinBox, &LyqSpinBox::valueChanged, this,
            &LyqColorLookupTableRenderSettingsEditorWidget::setThickness);
    connect(mSizeSpinBox, &LyqSpinBox::valueChanged, this, &LyqColorLookupTableRenderSettingsEditorWidget::setSize);
    // activated tells of every choice of the user and of no other change.
    connect(mPositionComboBox, &QComboBox::activated, this,
            &LyqColorLookupTableRenderSettingsEditorWidget::setPosition);
    connect(mAlignmentComboBox, &QComboBox::activated, this,
            &LyqColorLookupTableRenderSettingsEditorWidget::setAlignment);
    connect(mTextPositionComboBox, &QComboBox::activated, this,
            &LyqColorLookupTableRenderSettingsEditorWidget::setTextPosition);
    connect(mTextAlignmentComboBox, &QComboBox::activated, this,
            &LyqColorLookupTableRenderSettingsEditorWidget::setTextAlignment);
    connect(mHasOutlineComboBox, &QComboBox::activated, this,
            &LyqColorLookupTableRenderSettingsEditorWidget::setHasOutline);
    connect(mRenderingComboBox, &QComboBox::activated, this,
            &LyqColorLookupTableRenderSettingsEditorWidget::setRendering);
    connect(mDescriptionLineEdit, &QLineEdit::textChanged, this,
            &LyqColorLookupTableRenderSettingsEditorWidget::setDescription);
    connect(mColorWidget, &LyqColorWidget::rgbaChanged, this, &LyqColorLookupTableRenderSettingsEditorWidget::setColor);
    connect(mOutlineColorWidget, &LyqColorWidget::rgbaChanged, this,
            &LyqColorLookupTableRenderSettingsEditorWidget::setOutlineColor);
    connect(mFontPushButton, &QAbstractButton::clicked, this,
            qOverload<>(&LyqColorLookupTableRenderSettingsEditorWidget::setFont));
    connect(mResetPushButton, &QAbstractButton::clicked, this,
            &LyqColorLookupTableRenderSettingsEditorWidget::resetToDefault);

    connect(mDescriptionLineEdit, &QLineEdit::editingFinished, this, [this] { d->endGesture(); });
    for (LyqColorWidget* widget : {mColorWidget, mOutlineColorWidget}) {
        const Lyrenum property = widget == mColorWidget ? Lyr::Color : Lyr::OutlineColor;
        connect(widget, &LyqColorWidget::rgbaChanged, this, [this] { d->colorTried = true; });
        connect(widget, &LyqColorWidget::choosingStarted, this, [this, property] { d->rememberColors(property); });
        connect(widget, &LyqColorWidget::choosingCancelled, this, [this, property] { restoreColors(property); });
        connect(widget, &LyqColorWidget::choosingFinished, this, [this] { d->endGesture(); });
    }
    for (LyqSpinBox* box : {mThicknessSpinBox, mSizeSpinBox}) {
        box->installEventFilter(this);
    }
}

const LyrMetaClass& LyqColorLookupTableRenderSettingsEditorWidget::metaClass() {
    static const LyrMetaClass meta("LyqColorLookupTableRenderSettingsEditorWidget", sizeof(Editor),
                                   &LyqObjectEditorHandler::metaClass(), new EditorFactory, LYS_COLORTABLE_MODULE, 0,
                                   nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyqColorLookupTableRenderSettingsEditorWidget::getMetaClass() const {
    return metaClass();
}

bool LyqColorLookupTableRenderSettingsEditorWidget::checkObjects(const LyrObjectPath* paths, long long count) const {
    return std::all_of(paths, paths + std::max(0LL, count), [](const LyrObjectPath& path) {
        const LyrObject* object = lastObjectOf(path);
        return object && object->getMetaClass().isOfType(SETTINGS_CLASS);
    });
}

void LyqColorLookupTableRenderSettingsEditorWidget::setObjects(const LyrObjectPath* paths, long long count) {
    const LyrObjectPtr before = d->current;
    const std::vector<LyrObjectPtr> listBefore = d->listObjects();
    std::vector<LyrObjectPath> fresh(paths, paths + std::max(0LL, count));
    d->paths.clear();
    d->objects.clear();
    d->current = LyrObjectPtr();
    d->endGesture();
    d->paths = std::move(fresh);
    for (const LyrObjectPath& path : d->paths) {
        LyrObject* object = lastObjectOf(path);
        if (object && d->objects.append(object) && (!d->current || object == before.get())) {
            d->current = LyrObjectPtr(object);
        }
    }
    d->objects.setListener(this);
    if (d->listObjects() != listBefore) {
        // What the user chooses there is for the objects before.
        for (QDialog* dialog : findChildren<QDialog*>()) {
            dialog->reject();
        }
    }
    update();
}

// Only marked here: the controls follow with the next paint, once for however many messages.
bool LyqColorLookupTableRenderSettingsEditorWidget::iocCallback(Message& message) {
    update();
    return LyrIOC::iocCallback(message);
}

void LyqColorLookupTableRenderSettingsEditorWidget::showEvent(QShowEvent* event) {
    sync();
    QWidget::showEvent(event);
}

void LyqColorLookupTableRenderSettingsEditorWidget::paintEvent(QPaintEvent* event) {
    sync();
    QWidget::paintEvent(event);
}

void LyqColorLookupTableRenderSettingsEditorWidget::languageChange() {
    LyqColorLookupTableRenderSettingsEditorWidgetUI::languageChange();
    sync();
}

bool LyqColorLookupTableRenderSettingsEditorWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == mThicknessSpinBox || watched == mSizeSpinBox) {
        d->hearBox(watched, *event);
    }
    return LyqColorLookupTableRenderSettingsEditorWidgetUI::eventFilter(watched, event);
}

QString LyqColorLookupTableRenderSettingsEditorWidget::actionName() {
    return tr("Change colorbar settings");
}

/** Runs `write` on every edited object, in one undo step. Writes of the same gesture owner that follow each other
 * merge. */
template <class Write>
void LyqColorLookupTableRenderSettingsEditorWidget::writeEach(const QWidget* gestureOwner, Write write) {
    // Listeners of what is written may set other objects.
    const std::vector<LyrObjectPtr> objects = d->listObjects();
    if (!objects.empty()) {
        d->enterGesture(gestureOwner);
        {
            const LyqApplication::UserActionScope action(actionName());
            for (const LyrObjectPtr& object : objects) {
                write(object.get());
            }
        }
        if (gestureOwner) {
            LyqApplication::instance().gestureEnd();
        }
    }
    update();
}

template <class T>
void LyqColorLookupTableRenderSettingsEditorWidget::writeAll(const QWidget* gestureOwner, Lyrenum property,
                                                             const T& value) {
    writeEach(gestureOwner, [&](LyrObject* object) { lyrSetValue<T>(object, property, value); });
}

void LyqColorLookupTableRenderSettingsEditorWidget::setThickness(double pixels) {
    if (!std::isnan(pixels)) {
        const auto whole = static_cast<long long>(std::clamp(pixels, -LARGEST_THICKNESS, LARGEST_THICKNESS));
        writeAll(d->boxOwner(mThicknessSpinBox), Lyr::Thickness, whole);
    }
}

void LyqColorLookupTableRenderSettingsEditorWidget::setSize(double percent) {
    // Narrowed once: 70 gives the bits of 0.7f.
    writeAll(d->boxOwner(mSizeSpinBox), Lyr::Size, static_cast<float>(percent * 0.01));
}

void LyqColorLookupTableRenderSettingsEditorWidget::setPosition(int index) {
    writeAll(nullptr, Lyr::Position, choose(index, {Lyr::Left, Lyr::Right, Lyr::Bottom, Lyr::Top}, Lyr::Left));
}

void LyqColorLookupTableRenderSettingsEditorWidget::setAlignment(int index) {
    writeAll(nullptr, Lyr::Alignment, choose(index, {Lyr::Bottom, Lyr::Center, Lyr::Top}, Lyr::Center));
}

void LyqColorLookupTableRenderSettingsEditorWidget::setTextPosition(int index) {
    writeAll(nullptr, Lyr::TextPosition, choose(index, {Lyr::Left, Lyr::Right}, Lyr::Left));
}

void LyqColorLookupTableRenderSettingsEditorWidget::setTextAlignment(int index) {
    writeAll(nullptr, Lyr::TextAlignment, choose(index, {Lyr::Left, Lyr::Right}, Lyr::Left));
}

void LyqColorLookupTableRenderSettingsEditorWidget::setDescription(const QString& editText) {
    writeEach(mDescriptionLineEdit, [&](LyrObject* object) {
        const QByteArray written = ApplicationPlaceholders::editToInternalText(editText, object).toUtf8();
        lyrSetValue<const char*>(object, descriptionTemplateId(), written.constData());
    });
}

void LyqColorLookupTableRenderSettingsEditorWidget::setColor(const LyrRGBAf& color) {
    writeAll(mColorWidget, Lyr::Color, color);
}

void LyqColorLookupTableRenderSettingsEditorWidget::setOutlineColor(const LyrRGBAf& color) {
    writeAll(mOutlineColorWidget, Lyr::OutlineColor, color);
}

/** Gives every object the colour back that it had when the user began to choose, as if nothing had been tried. */
void LyqColorLookupTableRenderSettingsEditorWidget::restoreColors(Lyrenum property) {
    const auto oldColors = std::move(d->oldColors);
    d->oldColors.clear();
    if (std::exchange(d->colorTried, false)) {
        LyqApplication::instance().gestureDrop(d->gesture);
        // What no step held.
        const LyqApplication::UserActionScope action(actionName());
        for (const auto& [object, color] : oldColors) {
            if (!(lyrGetValue(object.get(), property, LyrRGBAf()) == color)) {
                lyrSetValue(object.get(), property, color);
            }
        }
    }
    update();
}

void LyqColorLookupTableRenderSettingsEditorWidget::setHasOutline(int index) {
    writeAll(nullptr, Lyr::HasOutline, choiceOfOnOff(index));
}

void LyqColorLookupTableRenderSettingsEditorWidget::setRendering(int index) {
    writeAll(nullptr, Lyr::Rendering, choiceOfOnOff(index));
}

void LyqColorLookupTableRenderSettingsEditorWidget::setFont() {
    if (d->current) {
        // On the heap: the editor may go while the dialog is open, and takes it along.
        const std::vector<LyrObjectPtr> list = d->listObjects();
        const QPointer<QFontDialog> dialog = new QFontDialog(fontOf(d->current.get()), this);
        const bool confirmed = dialog->exec() == QDialog::Accepted;
        if (!dialog) {
            return;
        }
        if (confirmed && d->listObjects() == list) {
            const QByteArray description = dialog->selectedFont().toString().toUtf8();
            writeAll<const char*>(nullptr, Lyr::Font, description.constData());
        }
        delete dialog;
    }
    update();
}

void LyqColorLookupTableRenderSettingsEditorWidget::resetToDefault() {
    if (d->current) {
        const LyrObjectPtr current = d->current;
        d->endGesture();
        const LyqApplication::UserActionScope action(actionName());
        current->runAction(Lyr::ResetToDefaults);
    }
    update();
}

/** Fills the controls from the current object, silently. What shows the right thing already is left alone: the user may
 * be at it. */
void LyqColorLookupTableRenderSettingsEditorWidget::sync() {
    if (!isVisible()) {
        return;
    }
    if (const LyrObject* object = d->current.get()) {
        const LyrObjectPtr kept = d->current;
        syncPlacement(object);
        syncText(object);
    } else {
        mDescriptionLineEdit->showText({});
        mDescriptionPreviewLabel->clear();
        mDescriptionPreviewLabel->setToolTip({});
    }
}

void LyqColorLookupTableRenderSettingsEditorWidget::syncPlacement(const LyrObject* object) {
    const auto indexOf = [&](Lyrenum property, std::initializer_list<std::pair<Lyrenum, int>> indices) {
        const Lyrenum value = lyrGetValue<Lyrenum>(object, property, -1);
        const auto found =
            std::find_if(indices.begin(), indices.end(), [&](const auto& entry) { return entry.first == value; });
        return found != indices.end() ? found->second : 0;
    };
    const auto fill = [](LyqComboBox* box, const QStringList& items, int index) {
        box->setItems(items);
        box->setCurrentSilently(index);
    };
    {
        const QSignalBlocker thickness(mThicknessSpinBox);
        const QSignalBlocker size(mSizeSpinBox);
        mThicknessSpinBox->setValue(static_cast<double>(lyrGetValue<long long>(object, Lyr::Thickness, 0)));
        // 0.7f times 100 is 69.9999988.
        mSizeSpinBox->setValue(std::round(static_cast<double>(lyrGetValue<float>(object, Lyr::Size, 0.0f)) * 100.0));
    }
    const int position = indexOf(Lyr::Position, {{Lyr::Left, 0}, {Lyr::Right, 1}, {Lyr::Bottom, 2}, {Lyr::Top, 3}});
    const Lyrenum side = lyrGetValue<Lyrenum>(object, Lyr::Position, -1);
    const bool horizontal = side == Lyr::Bottom || side == Lyr::Top;
    fill(mPositionComboBox, {tr("Left"), tr("Right"), tr("Bottom"), tr("Top")}, position);
    fill(mAlignmentComboBox,
         horizontal ? QStringList{tr("Left"), tr("Center"), tr("Right")}
                    : QStringList{tr("Bottom"), tr("Center"), tr("Top")},
         indexOf(Lyr::Alignment, {{Lyr::Bottom, 0}, {Lyr::Left, 0}, {Lyr::Center, 1}, {Lyr::Top, 2}, {Lyr::Right, 2}}));
    fill(mTextPositionComboBox,
         horizontal ? QStringList{tr("Bottom"), tr("Top")} : QStringList{tr("Left"), tr("Right")},
         indexOf(Lyr::TextPosition, {{Lyr::Bottom, 0}, {Lyr::Left, 0}, {Lyr::Top, 1}, {Lyr::Right, 1}}));
    fill(mTextAlignmentComboBox, {tr("Left"), tr("Right")},
         indexOf(Lyr::TextAlignment, {{Lyr::Left, 0}, {Lyr::Right, 1}}));
    mHasOutlineComboBox->setCurrentSilently(indexOfOnOff(object, Lyr::HasOutline));
    mRenderingComboBox->setCurrentSilently(indexOfOnOff(object, Lyr::Rendering));
}

void LyqColorLookupTableRenderSettingsEditorWidget::syncText(const LyrObject* object) {
    mColorWidget->setRgba(lyrGetValue(object, Lyr::Color, LyrRGBAf::WHITE()));
    mOutlineColorWidget->setRgba(lyrGetValue(object, Lyr::OutlineColor, LyrRGBAf::BLACK()));

    const QString font = describeFont(fontOf(object));
    if (mFontPushButton->text() != font) {
        mFontPushButton->setText(font);
        mFontPushButton->setToolTip(font);
    }

    const QString text = QString::fromUtf8(lyrGetValue<const char*>(object, descriptionTemplateId(), ""));
    mDescriptionLineEdit->showText(ApplicationPlaceholders::internalToEditText(text, object));
    const QString preview = ApplicationPlaceholders::internalToDisplayText(text, object);
    if (mDescriptionPreviewLabel->text() != preview) {
        mDescriptionPreviewLabel->setText(preview);
        // As rich text, or a caption with tags in it would be taken for that.
        mDescriptionPreviewLabel->setToolTip(
            preview.isEmpty() ? QString() : QStringLiteral("<qt>%1</qt>").arg(preview.toHtmlEscaped()));
    }
}

QString LyqColorLookupTableRenderSettingsEditorWidget::describeFont(const QFont& font) {
    // A font that is given in pixels has no size in points of its own.
    const double points = font.pointSizeF() > 0.0 ? font.pointSizeF() : QFontInfo(font).pointSizeF();
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    QString text = tr("%1, %2 pt").arg(font.family(), locale.toString(points, 'g', 6));
    const std::pair<bool, QString> styles[] = {{font.bold(), tr(", bold")},
                                               {font.italic(), tr(", italic")},
                                               {font.underline(), tr(", underline")},
                                               {font.overline(), tr(", overline")},
                                               {font.strikeOut(), tr(", strike out")}};
    for (const auto& [set, name] : styles) {
        if (set) {
            text += name;
        }
    }
    return text;
}
