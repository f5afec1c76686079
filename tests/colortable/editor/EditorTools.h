#pragma once

#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTableSection.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrVector2.h>
#include <lys_core/LyqApplication.h>

#include <QApplication>
#include <QString>
#include <QTimer>
#include <QUndoStack>
#include <QWidget>

#include <functional>
#include <vector>

/** A new table of the application's document. */
inline LyrObjectRefPtr newTable() {
    return LyrObjectRefPtr("LyrColorLookupTable", Lyr::DocumentScope);
}

inline std::vector<float> positionsOf(const LyrObject* table) {
    LyrValueArrayOPCache<float> cache;
    cache.load(table, Lyr::PositionList);
    return cache.items();
}

inline void setPositions(LyrObject* table, const std::vector<float>& positions) {
    LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>>(table, Lyr::PositionList)
        ->initArray(0, static_cast<long long>(positions.size()) - 1, positions.data());
}

inline std::vector<LyrObject*> sectionsOf(const LyrObject* table) {
    LyrValueArrayOPCache<LyrObjectLink> cache;
    cache.load(table, Lyr::SectionList);
    std::vector<LyrObject*> sections;
    for (const LyrObjectLink& link : cache.items()) {
        sections.push_back(link.getLink());
    }
    return sections;
}

inline LyrObject* sectionOf(const LyrObject* table, std::size_t index) {
    return sectionsOf(table).at(index);
}

inline Lyrenum typeOf(const LyrObject* section) {
    return lyrGetValue(section, Lyr::Type, Lyrenum(-1));
}

using Points = std::vector<LyrVector2<float>>;

inline Points pointsOf(const LyrObject* section, Lyrenum channel) {
    LyrValueArrayOPCache<LyrVector2<float>> cache;
    cache.load(section, channel);
    return cache.items();
}

inline void setPoints(LyrObject* section, Lyrenum channel, const Points& points) {
    LyrValueArrayOPPtr<LyrValueArrayPropertyIF<LyrVector2<float>>>(section, channel)
        ->initArray(0, static_cast<long long>(points.size()) - 1, points.data());
}

/** A table with these positions and types; points are left as a new section has them. */
inline LyrObjectRefPtr makeTable(const std::vector<float>& positions, const std::vector<Lyrenum>& types) {
    LyrObjectRefPtr table = newTable();
    std::vector<LyrObjectRefPtr> sections;
    std::vector<LyrObjectLink> links;
    for (const Lyrenum type : types) {
        sections.emplace_back("LyrColorLookupTable::Section", Lyr::DocumentScope);
        lyrSetValue(sections.back().get(), Lyr::Type, type);
        links.emplace_back(sections.back().get(), nullptr, -1);
    }
    setPositions(table.get(), positions);
    LyrValueArrayOPPtr<LyrValueArrayPropertyIF<LyrObjectLink>>(table.get(), Lyr::SectionList)
        ->initArray(0, static_cast<long long>(links.size()) - 1, links.data());
    return table;
}

/** The names of the undo steps since it was made. */
class StepsSince {
public:
    StepsSince() : mFirst(stack().index()) {}
    QStringList names() const {
        QStringList texts;
        for (int i = mFirst; i < stack().index(); ++i) {
            texts.append(stack().text(i));
        }
        return texts;
    }

private:
    static QUndoStack& stack() { return LyqApplication::instance().undoStack(); }
    int mFirst;
};

/** Counts errors with a code and keeps them from failing the case. */
class ExpectedErrors : public LyrError::Listener {
public:
    explicit ExpectedErrors(Lyrenum code) : mCode(code) {}
    bool errorEmitted(const LyrError::Message& message) override {
        const bool expected = message.getCode() == mCode;
        mCount += expected;
        return expected;
    }
    int count() const { return mCount; }

private:
    Lyrenum mCode;
    int mCount = 0;
};

/** Does something to the next modal widget of a class, as soon as it is shown. */
template <class Widget>
void whenModal(std::function<void(Widget&)> act) {
    QTimer::singleShot(0, qApp, [act] {
        if (auto* widget = qobject_cast<Widget*>(QApplication::activeModalWidget())) {
            act(*widget);
        } else {
            whenModal<Widget>(act);
        }
    });
}
