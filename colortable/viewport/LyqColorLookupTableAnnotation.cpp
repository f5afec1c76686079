#include <colortable/ColortableIdentifiers.h>
#include <colortable/legend/LyqColorLookupTableWidget.h>
#include <colortable/viewport/LyqColorLookupTableAnnotation.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqFrame.h>
#include <toolkit/QGuardedPtr.h>

#include <functional>
#include <utility>

namespace {

/** Display units are told on by one annotation at a time: an annotation that hears another's message does not start
 * again. */
bool sRelaying = false;

class RelayScope {
public:
    RelayScope() { sRelaying = true; }
    ~RelayScope() { sRelaying = false; }
    RelayScope(const RelayScope&) = delete;
    RelayScope& operator=(const RelayScope&) = delete;
};

class AnnotationFactory : public LyrMetaClass::Factory {
public:
    LyrClass* create(void* storage) const override {
        return storage ? new (storage) LyqColorLookupTableAnnotation() : new LyqColorLookupTableAnnotation();
    }
    // A QObject has an identity: it is neither copied nor assigned.
    LyrClass* createCopy(const LyrClass*, void*) const override { return nullptr; }
    bool assign(LyrClass*, const LyrClass*) const override { return false; }
    bool isStorable() const override { return false; }
};

/** Calls for a new synchronisation when its property changes. */
class ChangeHook : public LyrProperty::Extension {
public:
    explicit ChangeHook(std::function<void()> changed) : mChanged(std::move(changed)) {}
    void propertyHasChangedHook() override { mChanged(); }

private:
    std::function<void()> mChanged;
};

}  // namespace

struct LyqColorLookupTableAnnotation::Private : LyrPrivatePart {
    explicit Private(LyqColorLookupTableAnnotation& owner)
        : settingsHook([&owner] { owner.synchronize(); }),
          dotsPerInchHook([&owner] { owner.synchronize(); }),
          tableHook([&owner] { owner.synchronize(); }),
          application(&owner) {}

    QGuardedPtr<LyqColorLookupTableWidget> lookupTableWidget;
    QGuardedPtr<LyqAnnotationFrame> annotationFrame;
    QGuardedPtr<LyqFrame> frame;
    LyrObjectSoftLinkOP renderSettings;
    LyrSingleValueOP<LyrSingleValuePropertyIF<LyrVector2<float>>> dotsPerInch;
    ChangeHook settingsHook;
    ChangeHook dotsPerInchHook;
    ChangeHook tableHook;
    LyrObjectIOCPtr application;

    Lyrenum registerProperties(LyqColorLookupTableAnnotation& owner) {
        bool done = owner.addProperty(Lyr::ColorLookupTableRenderSettings, &renderSettings);
        done = owner.addProperty(Lyr::DotsPerInch, &dotsPerInch) && done;
        LyrProperty* table = owner.getProperty(Lyr::Object);
        done = renderSettings.addPropertyExtension(&settingsHook) && done;
        done = dotsPerInch.addPropertyExtension(&dotsPerInchHook) && done;
        done = table && table->addPropertyExtension(&tableHook) && done;
        return done ? Lyrenum(1) : Lyr::Failed;
    }
};

LyqColorLookupTableAnnotation::LyqColorLookupTableAnnotation(LyqAnnotationGroup* group, const char* name)
    : LyqAnnotation(group, name), d(new Private(*this)) {
    setMovingEnabled(false);
    const Lyrenum result = d ? d->registerProperties(*this) : Lyr::AllocationFailed;
    if (result != Lyrenum(1)) {
        LyrError::emitError(LyrError::Message(this, result));
    }
    if (d) {
        buildFrames();
        synchronize();
    }
}

LyqColorLookupTableAnnotation::~LyqColorLookupTableAnnotation() {
    if (d) {
        delete d->frame.data();
    }
}

const LyrMetaClass& LyqColorLookupTableAnnotation::metaClass() {
    static const LyrMetaClass meta("LyqColorLookupTableAnnotation", sizeof(LyqColorLookupTableAnnotation),
                                   &LyrObject::metaClass(), new AnnotationFactory, LYS_COLORTABLE_MODULE, 0, nullptr, 0,
                                   0, 0, LyrObject::metaClass().isSingleton());
    return meta;
}

const LyrMetaClass& LyqColorLookupTableAnnotation::getMetaClass() const {
    return metaClass();
}

void LyqColorLookupTableAnnotation::buildFrames() {
    d->frame = new LyqFrame(LyqApplication::instance().mainWidget());
    d->frame->hide();
    d->annotationFrame = new LyqAnnotationFrame(d->frame);
    d->lookupTableWidget = new LyqColorLookupTableWidget(d->annotationFrame);
    d->annotationFrame->setContent(d->lookupTableWidget);
    d->frame->setContent(d->annotationFrame);
    d->annotationFrame->setFrameShape(QFrame::NoFrame);
    d->annotationFrame->setBackgroundColor(QColor(KEY_COLOR));
}

LyqFrame* LyqColorLookupTableAnnotation::widget() const {
    return d ? d->annotationFrame.data() : nullptr;
}

LyqColorLookupTableWidget* LyqColorLookupTableAnnotation::lookupTableWidget() const {
    return d ? d->lookupTableWidget.data() : nullptr;
}

LyqFrame* LyqColorLookupTableAnnotation::outerFrame() const {
    return d ? d->frame.data() : nullptr;
}

void LyqColorLookupTableAnnotation::synchronize() {
    d->application = &LyqApplication::instance().object();
    if (!d->lookupTableWidget) {
        return;
    }
    const auto dotsPerInch = lyrGetValue(this, Lyr::DotsPerInch, LyrVector2<float>::ZERO());
    d->lookupTableWidget->setColorTable(lyrGetValue(this, Lyr::Object, LyrObjectLink()).getLink());
    d->lookupTableWidget->setRenderSettings(d->renderSettings.getTarget());
    d->lookupTableWidget->setDotsPerInch(dotsPerInch.x);
}

bool LyqColorLookupTableAnnotation::iocCallback(Message& message) {
    const bool unitsChanged =
        message.getSender() == &LyqApplication::instance().object() && message.getPropertyID() == Lyr::DisplayUnitList;
    if (unitsChanged && !sRelaying) {
        const RelayScope scope;
        Message relayed(this, Lyr::PropertyHasChanged, Lyr::DisplayUnitList);
        iocBroadcast(relayed);
    }
    return LyqAnnotation::iocCallback(message);
}
