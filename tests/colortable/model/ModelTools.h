#pragma once

#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <colortable/model/LyrColorLookupTableSection.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrUndoJournal.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/** Helpers of the tests of tables and sections. */
namespace model {

using Table = LyrColorLookupTable;
using Section = LyrColorLookupTable::Section;
using Color = LyrRGBA<float>;
using Point = LyrVector2<float>;

/** Collects the errors of a test. Those that nobody takes fail the test. */
class Errors : public LyrError::Listener {
public:
    struct Entry {
        const LyrClass* source;
        int code;
        friend bool operator==(const Entry&, const Entry&) = default;
    };
    ~Errors() override {
        for (const Entry& entry : mEntries) {
            ADD_FAILURE() << "unexpected error " << entry.code;
        }
    }
    bool errorEmitted(const LyrError::Message& message) override {
        mEntries.push_back({message.getSource(), int(message.getCode())});
        return true;
    }
    std::vector<Entry> take() { return std::exchange(mEntries, {}); }

private:
    std::vector<Entry> mEntries;
};

/** An object by class name, with the typed view of it. */
template <class T>
class Held {
public:
    Held(const char* className, Lyrenum scope) : mObject(className, scope) {}
    T* get() const { return static_cast<T*>(mObject.get()); }
    T* operator->() const { return get(); }
    T& operator*() const { return *get(); }
    explicit operator bool() const { return bool(mObject); }

private:
    LyrObjectRefPtr mObject;
};

inline Held<Table> newTable() {
    return {"LyrColorLookupTable", Lyr::DocumentScope};
}
inline Held<Section> newSection() {
    return {"LyrColorLookupTable::Section", Lyr::DocumentScope};
}

template <class T>
std::vector<T> listOf(const LyrObject& object, Lyrenum id) {
    LyrValueArrayOPCache<T> cache;
    EXPECT_TRUE(cache.load(&object, id));
    return cache.items();
}

template <class T>
bool setList(LyrObject& object, Lyrenum id, const std::vector<T>& items) {
    const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<T>> list(&object, id);
    return list && list->initArray(0, static_cast<long long>(items.size()) - 1, items.data());
}

inline std::vector<LyrObject*> sectionsOf(const LyrObject& table) {
    std::vector<LyrObject*> result;
    for (const LyrObjectLink& link : listOf<LyrObjectLink>(table, Lyr::SectionList)) {
        result.push_back(link.getLink());
    }
    return result;
}

inline Section& sectionAt(const LyrObject& table, std::size_t index) {
    return static_cast<Section&>(*sectionsOf(table).at(index));
}

inline bool setSections(LyrObject& table, const std::vector<LyrObject*>& sections) {
    std::vector<LyrObjectLink> links;
    for (LyrObject* section : sections) {
        links.emplace_back(section, nullptr, -1);
    }
    return setList(table, Lyr::SectionList, links);
}

inline bool setFiniteMode(LyrObject& table, int below, int above) {
    return lyrSetValue(&table, Lyr::FiniteMode, LyrValuePair<Lyrenum>{below, above});
}

inline bool setType(LyrObject& section, Lyrenum type) {
    return lyrSetValue(&section, Lyr::Type, type);
}

inline bool setRed(LyrObject& section, const std::vector<Point>& points) {
    return setList(section, Lyr::PointListRed, points);
}

/** A new constant section of one red value, opaque. It has no reference yet: the first list or handle keeps it. */
inline Section* redSection(float red) {
    auto* section = new Section;
    EXPECT_TRUE(setRed(*section, {{0.0f, red}}));
    EXPECT_TRUE(setList<Point>(*section, Lyr::PointListAlpha, {{0.0f, 1.0f}}));
    return section;
}

/** A colour that no table of these tests gives: what an output must still hold where nothing was written. */
inline const Color untouched(-7.0f, -8.0f, -9.0f, -10.0f);
inline const Color transparent(0.0f, 0.0f, 0.0f, 0.0f);
inline const Color black(0.0f, 0.0f, 0.0f, 1.0f);

inline bool sameBits(const Color& a, const Color& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

/** One recorded message. */
struct Heard {
    const LyrObject* sender;
    const LyrObject* initialSender;
    int type;
    int property;
    int link;
    friend bool operator==(const Heard&, const Heard&) = default;
};

inline std::ostream& operator<<(std::ostream& out, const Heard& heard) {
    return out << "{from " << heard.sender << " about " << heard.initialSender << ", type " << heard.type
               << ", property " << Lyrenum(heard.property).getName() << ", link " << heard.link << '}';
}

/** Listens and remembers. */
class Ear : public LyrIOC {
public:
    bool iocCallback(Message& message) override {
        heard.push_back({message.getSender(), message.getInitialSender(), int(message.getMessageType()),
                         int(message.getPropertyID()), int(message.getLinkID())});
        return LyrIOC::iocCallback(message);
    }
    std::vector<Heard> take() { return std::exchange(heard, {}); }
    std::vector<Heard> heard;
};

/** Keeps the undo steps that finish while it lives. */
class Steps : public LyrUndoJournal::Sink {
public:
    Steps() : mBefore(LyrUndoJournal::instance().getSink()) { LyrUndoJournal::instance().setSink(this); }
    ~Steps() override { LyrUndoJournal::instance().setSink(mBefore); }
    bool stepFinished(std::unique_ptr<LyrUndoStep>& step) override {
        steps.push_back(std::move(step));
        return true;
    }
    std::vector<std::unique_ptr<LyrUndoStep>> steps;

private:
    LyrUndoJournal::Sink* mBefore;
};

/** Runs `work` as one action and returns how many writes its step holds; 0 where it left no step. */
template <class Work>
std::size_t recordedBy(Work work) {
    Steps sink;
    auto& journal = LyrUndoJournal::instance();
    const auto token = journal.begin(LyrString::fromUtf8("test"));
    work();
    EXPECT_TRUE(journal.end(token));
    return sink.steps.empty() ? 0 : sink.steps.front()->getEntryCount();
}

}  // namespace model
