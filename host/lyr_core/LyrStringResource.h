#pragma once

#include <utility>

#include <lyr_core/LyrI18n.h>
#include <lyr_core/LyrString.h>

/** A text that is translated when it is shown, not when it is stored. It keeps copies of its parts, so that it outlives
 *  the library that named them. */
class LyrStringResource {
public:
    LyrStringResource() = default;
    LyrStringResource(LyrString context, LyrString key, LyrString comment = LyrString())
        : mContext(std::move(context)), mKey(std::move(key)), mComment(std::move(comment)) {}

    const LyrString& getContext() const { return mContext; }
    const LyrString& getKey() const { return mKey; }
    const LyrString& getComment() const { return mComment; }

    /** The text in a language (−1: that of the application); the key where there is no translation, null without a
     *  key. */
    LyrString translate(Lyrenum language = Lyrenum(-1)) const {
        return mKey.isNull() ? LyrString()
                             : LyrI18n::translate(mContext.utf8(), mKey.utf8(), mComment.utf8(), language);
    }

    friend bool operator==(const LyrStringResource& a, const LyrStringResource& b) = default;

private:
    LyrString mContext;
    LyrString mKey;
    LyrString mComment;
};
