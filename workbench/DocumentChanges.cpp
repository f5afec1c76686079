#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObjectFile.h>
#include <lyr_core/LyrProperty.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqSession.h>
#include <workbench/DocumentChanges.h>

#include <QUndoStack>

#include <algorithm>
#include <string>

namespace workbench {

/** An owner of a content: owners hear of what is changed inside. */
class DocumentChanges::Watch : public LyrObject {
public:
    Watch(DocumentChanges& changes, LyrObject* content) : mChanges(&changes) {
        addProperty(Lyr::Object, &mContent);
        mContent.setValue(LyrObjectLink(content, nullptr, -1));
        take();
    }

    LyrObject* content() const { return mContent.getTarget(); }

    /** What is there now counts as saved. */
    void take() {
        modified = false;
        mSaved.clear();
        LyrObjectFile::write(*content(), mSaved);
    }
    bool isAsSaved() const {
        std::string text;
        return LyrObjectFile::write(*content(), text) && text == mSaved;
    }
    /** From now on it tells nobody: others may keep it alive for a while. */
    void end() { mChanges = nullptr; }

    bool iocCallback(Message& message) override {
        const LyrObject* source = message.getInitialSender();
        const LyrProperty* property = source && source != this ? source->getProperty(message.getPropertyID()) : nullptr;
        if (mChanges && !modified && message.getMessageType() == Lyr::PropertyHasChanged && property &&
            property->getFlags(LyrFlags::PRESET) != 0) {
            modified = true;
            Q_EMIT mChanges->changed();
        }
        return LyrObject::iocCallback(message);
    }

    bool modified = false;
    QString file;

private:
    DocumentChanges* mChanges;
    LyrObjectHardLinkOP mContent;
    std::string mSaved;
};

DocumentChanges::DocumentChanges(QObject* parent) : QObject(parent) {
    mLayers.setListener(this);
    connect(&LyqSession::instance(), &LyqSession::layersChanged, this, &DocumentChanges::follow);
    connect(&LyqApplication::instance().undoStack(), &QUndoStack::indexChanged, this, &DocumentChanges::compare);
    follow();
}

DocumentChanges::~DocumentChanges() {
    for (const LyrObjectPtr& watch : mWatches) {
        static_cast<Watch&>(*watch).end();
    }
}

DocumentChanges::Watch* DocumentChanges::watchOf(const LyrObject* content) const {
    for (const LyrObjectPtr& object : mWatches) {
        auto* watch = static_cast<Watch*>(object.get());
        if (watch->content() == content) {
            return watch;
        }
    }
    return nullptr;
}

/** Layers came or went: what stayed keeps its marks. */
void DocumentChanges::follow() {
    std::vector<LyrObjectPtr> watches;
    mLayers.clear();
    for (LyqLayer* layer : LyqSession::instance().layers()) {
        mLayers.append(layer);
        for (const LyqLayer::Content& content : layer->contents()) {
            Watch* known = watchOf(content.object);
            if (const LyrObjectPtr watch(known ? known : new Watch(*this, content.object)); watch) {
                watches.push_back(watch);
            }
        }
    }
    mWatches.swap(watches);
    for (const LyrObjectPtr& watch : watches) {
        if (std::find(mWatches.begin(), mWatches.end(), watch) == mWatches.end()) {
            static_cast<Watch&>(*watch).end();
        }
    }
    Q_EMIT changed();
}

bool DocumentChanges::iocCallback(Message& message) {
    bool allWatched = true;
    for (const LyqLayer* layer : LyqSession::instance().layers()) {
        for (const LyqLayer::Content& content : layer->contents()) {
            allWatched = allWatched && watchOf(content.object);
        }
    }
    if (!allWatched) {
        follow();
    }
    return LyrIOC::iocCallback(message);
}

void DocumentChanges::compare() {
    bool any = false;
    for (const LyrObjectPtr& object : mWatches) {
        auto& watch = static_cast<Watch&>(*object);
        if (watch.modified && watch.isAsSaved()) {
            watch.modified = false;
            any = true;
        }
    }
    if (any) {
        Q_EMIT changed();
    }
}

bool DocumentChanges::isModified() const {
    return std::any_of(mWatches.begin(), mWatches.end(),
                       [](const LyrObjectPtr& watch) { return static_cast<const Watch&>(*watch).modified; });
}

bool DocumentChanges::isModified(const LyrObject* content) const {
    const Watch* watch = watchOf(content);
    return watch && watch->modified;
}

QString DocumentChanges::file(const LyrObject* content) const {
    const Watch* watch = watchOf(content);
    return watch ? watch->file : QString();
}

void DocumentChanges::setSaved(const LyrObject* content, const QString& file) {
    if (Watch* watch = watchOf(content)) {
        watch->file = file;
        watch->take();
        Q_EMIT changed();
    }
}

}  // namespace workbench
