#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrObjectPath.h>
#include <lyr_core/LyrObjectPtr.h>

#include <algorithm>
#include <utility>

namespace {

LyrObject* findSingleton(const LyrMetaClass& meta) noexcept {
    for (const bool exact : {true, false}) {
        LyrClass* existing = nullptr;
        if (LyrClassManager::findObjects(&existing, 1, LyrClassManager::SearchPattern(meta.getClassName(), exact)) >
            0) {
            return dynamic_cast<LyrObject*>(existing);
        }
    }
    return nullptr;
}

LyrObject* makeObject(const LyrMetaClass& meta, Lyrenum scope) noexcept {
    LyrClass* made = meta.create();
    auto* object = dynamic_cast<LyrObject*>(made);
    if (object) {
        object->setScope(scope);
    } else {
        LyrMetaClass::destruct(made, true);
    }
    return object;
}

}  // namespace

LyrObjectRefPtr::LyrObjectRefPtr(const char* className, Lyrenum scope) noexcept {
    const LyrMetaClass* meta = LyrMetaClass::find(className);
    if (!meta) {
        return;
    }
    LyrObject* existing = meta->isSingleton() ? findSingleton(*meta) : nullptr;
    mObject = LyrObjectPtr(existing ? existing : makeObject(*meta, scope));
}

LyrObjectIOCPtr::LyrObjectIOCPtr(LyrIOC* listener, LyrObject* object) noexcept : mObject(object) {
    if (mObject) {
        mObject->incRef();
    }
    reconnect(listener);
}

LyrObjectIOCPtr::LyrObjectIOCPtr(const LyrObjectIOCPtr& other) noexcept
    : LyrObjectIOCPtr(other.getListener(), other.get()) {}

LyrObjectIOCPtr& LyrObjectIOCPtr::operator=(const LyrObjectIOCPtr& other) noexcept {
    return *this = other.get();
}

LyrObjectIOCPtr& LyrObjectIOCPtr::operator=(LyrObject* object) noexcept {
    if (object != mObject) {
        if (object) {
            object->incRef();
        }
        // The old object goes last, when this handle is consistent again.
        const LyrObject* old = std::exchange(mObject, object);
        reconnect(getListener());
        if (old) {
            old->decRef();
        }
    }
    return *this;
}

LyrObjectIOCPtr::~LyrObjectIOCPtr() {
    mLine.disconnect();
    if (mObject) {
        mObject->decRef();
    }
}

void LyrObjectIOCPtr::setListener(LyrIOC* listener) noexcept {
    reconnect(listener);
}

void LyrObjectIOCPtr::reconnect(LyrIOC* listener) noexcept {
    mLine.connect(mObject, listener, LyrIOCConnection::Kind::Handle, -1);
}

void LyrObjectIOCPtrList::setListener(LyrIOC* listener) noexcept {
    mListener.connect(nullptr, listener, LyrIOCConnection::Kind::Handle, -1);
    for (LyrObjectIOCPtr& item : mItems) {
        item.setListener(listener);
    }
}

bool LyrObjectIOCPtrList::append(LyrObject* object) noexcept {
    try {
        mItems.emplace_back(mListener.getListener(), object);
        return true;
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return false;
    }
}

void LyrObjectIOCPtrList::clear() noexcept {
    // Objects that go with their handles may lead back here: the list is empty by then.
    std::list<LyrObjectIOCPtr> retired;
    retired.swap(mItems);
}

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

bool LyrObjectPath::append(const LyrObjectLink& link) noexcept {
    try {
        mLinks.push_back({link, LyrObjectPtr(link.getLink())});
        return true;
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return false;
    }
}

LyrObjectPath LyrObjectPath::toRoot(LyrObject* object) noexcept {
    LyrObjectPath path;
    const auto isOnPath = [&](const LyrObject* wanted) {
        return std::any_of(path.mLinks.begin(), path.mLinks.end(),
                           [&](const Step& step) { return step.target == wanted; });
    };
    for (LyrObject* at = object; at && !isOnPath(at);) {  // owners may own each other in a ring
        const LyrObjectLink link = at->getParentLink();
        if (!path.append(link)) {
            path.mLinks.clear();
            break;
        }
        at = link.getOwner();
    }
    std::reverse(path.mLinks.begin(), path.mLinks.end());
    return path;
}
