#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrObjectPath.h>
#include <lyr_core/LyrObjectPtr.h>

#include <algorithm>

namespace {

LyrObject* makeOrFind(const LyrMetaClass& meta) {
    if (meta.isSingleton()) {
        LyrClass* existing = nullptr;
        if (LyrClassManager::findObjects(&existing, 1, LyrClassManager::SearchPattern(meta.getClassName())) > 0) {
            return dynamic_cast<LyrObject*>(existing);
        }
    }
    LyrClass* made = meta.create();
    auto* object = dynamic_cast<LyrObject*>(made);
    if (made && !object) {
        LyrMetaClass::destruct(made, true);
    }
    return object;
}

}  // namespace

LyrObjectRefPtr::LyrObjectRefPtr(const char* className, Lyrenum scope) {
    const LyrMetaClass* meta = LyrMetaClass::find(className);
    mObject = LyrObjectPtr(meta ? makeOrFind(*meta) : nullptr);
    if (mObject) {
        mObject->setScope(scope);
    }
}

LyrObjectIOCPtr::LyrObjectIOCPtr(LyrIOC* listener, LyrObject* object) noexcept : mListener(listener), mObject(object) {
    reconnect();
}

LyrObjectIOCPtr::LyrObjectIOCPtr(const LyrObjectIOCPtr& other) noexcept : LyrObjectIOCPtr(other.mListener, other.get()) {}

LyrObjectIOCPtr& LyrObjectIOCPtr::operator=(const LyrObjectIOCPtr& other) noexcept { return *this = other.get(); }

LyrObjectIOCPtr& LyrObjectIOCPtr::operator=(LyrObject* object) noexcept {
    if (object != mObject.get()) {
        // The old object dies last, when this handle is consistent again.
        LyrObjectPtr old = std::exchange(mObject, LyrObjectPtr(object));
        reconnect();
    }
    return *this;
}

void LyrObjectIOCPtr::setListener(LyrIOC* listener) noexcept {
    mListener = listener;
    reconnect();
}

void LyrObjectIOCPtr::reconnect() noexcept {
    mLine.disconnect();
    if (mListener) {
        mLine.connect(mObject.get(), mListener, LyrIOCConnection::Kind::Handle, -1);
    }
}

void LyrObjectIOCPtrList::setListener(LyrIOC* listener) noexcept {
    mListener = listener;
    for (LyrObjectIOCPtr& item : mItems) {
        item.setListener(listener);
    }
}

void LyrObjectIOCPtrList::append(LyrObject* object) { mItems.emplace_back(mListener, object); }

LyrObject* LyrObjectIOCPtrList::at(std::size_t index) const noexcept {
    return index < mItems.size() ? std::next(mItems.begin(), static_cast<std::ptrdiff_t>(index))->get() : nullptr;
}

bool LyrObjectIOCPtrList::contains(const LyrObject* object) const noexcept {
    return std::any_of(mItems.begin(), mItems.end(), [&](const LyrObjectIOCPtr& item) { return item == object; });
}

LyrObjectLink LyrObjectPath::getLink(long long index) const noexcept {
    const auto count = getLinkCount();
    const long long at = index < 0 ? count + index : index;
    return at >= 0 && at < count ? mLinks[static_cast<std::size_t>(at)].link : LyrObjectLink();
}

void LyrObjectPath::append(const LyrObjectLink& link) { mLinks.push_back({link, LyrObjectPtr(link.getLink())}); }

LyrObjectPath LyrObjectPath::toRoot(LyrObject* object) {
    LyrObjectPath path;
    for (LyrObject* at = object; at;) {
        const LyrObjectLink link = at->getParentLink();
        path.mLinks.insert(path.mLinks.begin(), {LyrObjectLink(at, link.getOwner(), link.getLinkID()), LyrObjectPtr(at)});
        at = link.getOwner();
    }
    return path;
}
