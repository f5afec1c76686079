#pragma once

#include <lyr_core/LyrJsonValue_p.h>

#include <memory>
#include <string>

/** What a file held about an object that this version does not know. Kept with the object and written back with it. */
class LyrObjectUnknownData : public std::enable_shared_from_this<LyrObjectUnknownData> {
public:
    /** The class that the file named where it is unknown here; empty otherwise. It is written back only by an object of
     * the class that stood in for it. */
    std::string className;
    std::string standIn;
    LyrJsonValue properties{LyrJsonValue::Kind::Object};  ///< members of "properties"
    LyrJsonValue members{LyrJsonValue::Kind::Object};     ///< members beside "class" and "properties"

    bool isEmpty() const noexcept { return className.empty() && properties.items.empty() && members.items.empty(); }
};
