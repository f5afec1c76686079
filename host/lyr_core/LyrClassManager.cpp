#include <lyr_core/LyrClass.h>
#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrLiveClasses_p.h>
#include <lyr_core/LyrMetaClass.h>

#include <cstddef>
#include <cstring>
#include <mutex>
#include <new>

namespace {

/** Recursive: telling an object's class may bring its meta class up. */
struct LiveObjects {
    std::recursive_mutex mutex;
    LyrEmbeddedList<LyrClass, LyrClass> list;

    /** Never destroyed: static objects of any library enter and leave. Not from the heap, which may be used up when the
     *  first object comes. */
    static LiveObjects& instance() {
        alignas(LiveObjects) static std::byte memory[sizeof(LiveObjects)];
        static LiveObjects& objects = *new (memory) LiveObjects;
        return objects;
    }
};

/** Null where memory ran out for a meta class that nobody has asked for before. */
const LyrMetaClass* metaOf(const LyrClass& object) noexcept {
    try {
        return &object.getMetaClass();
    } catch (...) {
        return nullptr;
    }
}

bool fits(const LyrClass& object, const LyrClassManager::SearchPattern& pattern) {
    const LyrMetaClass* const known = metaOf(object);
    if (!known || !lyr_live_classes::contains(*known)) {
        return false;
    }
    const LyrMetaClass& meta = *known;
    if (pattern.module && std::strcmp(meta.getModule(), pattern.module) != 0) {
        return false;
    }
    if (!pattern.className) {
        return pattern.module != nullptr;
    }
    return pattern.exact ? std::strcmp(meta.getClassName(), pattern.className) == 0 : meta.isOfType(pattern.className);
}

template <class Take>
void forEachFitting(const LyrClassManager::SearchPattern& pattern, Take take) {
    LiveObjects& objects = LiveObjects::instance();
    const std::lock_guard lock(objects.mutex);
    for (LyrClass* at = objects.list.first(); at; at = objects.list.next(at)) {
        if (fits(*at, pattern) && !take(at)) {
            return;
        }
    }
}

}  // namespace

long long LyrClassManager::getObjectCount(const SearchPattern& pattern) noexcept {
    long long count = 0;
    forEachFitting(pattern, [&](LyrClass*) { return ++count > 0; });
    return count;
}

long long LyrClassManager::findObjects(LyrClass** out, long long capacity, const SearchPattern& pattern) noexcept {
    long long count = 0;
    if (out && capacity > 0) {
        forEachFitting(pattern, [&](LyrClass* object) {
            out[count++] = object;
            return count < capacity;
        });
    }
    return count;
}

void LyrClassManager::enter(LyrClass* object) noexcept {
    LiveObjects& objects = LiveObjects::instance();
    const std::lock_guard lock(objects.mutex);
    if (!object->isListed()) {
        objects.list.append(object);
    }
}

void LyrClassManager::leave(LyrClass* object) noexcept {
    LiveObjects& objects = LiveObjects::instance();
    const std::lock_guard lock(objects.mutex);
    objects.list.remove(object);
}
