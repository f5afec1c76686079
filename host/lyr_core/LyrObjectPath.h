#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrObjectLink.h>
#include <lyr_core/LyrObjectPtr.h>

#include <vector>

/** A chain of links that leads from an object to one of its parts. Keeps the linked objects alive. */
class LYR_CORE_EXPORT LyrObjectPath {
public:
    LyrObjectPath() = default;

    /** The path of parent links from the topmost owner to an object. Empty, and an error, when memory ran out. */
    static LyrObjectPath toRoot(LyrObject* object) noexcept;

    /** False, and an error, when memory ran out. */
    bool append(const LyrObjectLink& link) noexcept;
    long long getLinkCount() const noexcept { return static_cast<long long>(mLinks.size()); }
    /** A link by index; negative ones count from the end (-1 is the last). A null link outside the path. */
    LyrObjectLink getLink(long long index) const noexcept;

private:
    struct Step {
        LyrObjectLink link;
        LyrObjectPtr target;
    };
    std::vector<Step> mLinks;
};
