#pragma once

#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrSingleValueProperty.h>
#include <lyr_core/LyrValueArrayProperty.h>

/** An object with two values, a list and a link that are content, and a side note that is not. */
class ContentObject : public LyrObject {
public:
    using FloatOP = LyrSingleValueOP<LyrSingleValuePropertyIF<float>>;
    using ListOP = LyrValueArrayOP<LyrValueArrayPropertyIF<float>>;

    static constexpr int VALUE = 900000001;
    static constexpr int OTHER = 900000002;
    static constexpr int LIST = 900000003;
    static constexpr int LINK = 900000004;
    static constexpr int NOTE = 900000005;

    ContentObject() {
        addProperty(VALUE, &value);
        addProperty(OTHER, &other);
        addProperty(LIST, &list);
        addProperty(LINK, &link);
        addProperty(NOTE, &note);
        for (const int id : {VALUE, OTHER, LIST, LINK}) {
            getProperty(id)->setFlags(LyrFlags::DATA, 0);
        }
        note.setFlags(LyrFlags::PRESET, 0);
        setFlags(LyrFlags::DATA, 0);
    }

    /** A new object, and a handle that keeps it. */
    static ContentObject* make(LyrObjectPtr& handle) {
        auto* object = new ContentObject;
        handle = LyrObjectPtr(object);
        return object;
    }

    FloatOP value;
    FloatOP other;
    ListOP list;
    LyrObjectHardLinkOP link;
    FloatOP note;
};
