#pragma once

#include <lyr_core/LyrCoreExport.h>

class LyrClass;

/** Finds the live objects of the process: every LyrObject, and what meta classes made of other classes. An object whose
 *  destruction has begun is not found any more. */
class LYR_CORE_EXPORT LyrClassManager {
public:
    /** What to look for: a class by name (with the classes derived from it, unless `exact`), or all classes of a
     * module. */
    struct SearchPattern {
        explicit SearchPattern(const char* name, bool onlyExact = false) noexcept : className(name), exact(onlyExact) {}
        static SearchPattern ofModule(const char* name) noexcept {
            SearchPattern pattern(nullptr);
            pattern.module = name;
            return pattern;
        }

        const char* className;
        const char* module = nullptr;
        bool exact;
    };

    /** How many live objects fit; 0 for an unknown class. */
    static long long getObjectCount(const SearchPattern& pattern) noexcept;
    /** Fills `out` with up to `capacity` fitting objects, oldest first, and returns how many it filled. */
    static long long findObjects(LyrClass** out, long long capacity, const SearchPattern& pattern) noexcept;

private:
    friend class LyrClass;
    friend class LyrMetaClass;
    friend class LyrObject;
    static void enter(LyrClass* object) noexcept;
    static void leave(LyrClass* object) noexcept;
};
