#include "RandomTable.h"
#include "colortable/model/UndoWalkContent.h"

#include <colortable/editor/TableEdits_p.h>
#include <lys_core/LyqApplication.h>

#include <QUndoStack>

#include <cmath>

// Splitting, merging, moving and colouring, of random tables, beside the same on a plain list.

using namespace edits;
using lys::editor::SectionRange;

namespace {

std::size_t at(long long index) {
    return static_cast<std::size_t>(index);
}

/** A random table with a history of its own, and what it holds. */
struct Edited {
    Edited() { application.undoStack().clear(); }

    undowalk::TableContent content() const { return undowalk::contentOfTable(table.get(), numbers); }

    /** Runs an edit as the editor does. */
    template <class Edit>
    bool edit(Edit work) {
        LyqApplication::UserActionScope action(QStringLiteral("edit"));
        const bool done = work();
        if (!done) {
            action.abort();
        }
        return done;
    }

    /** Undo brings back every bit and every object, redo the edit. */
    void checkUndo(const undowalk::TableContent& before) const {
        const undowalk::TableContent after = content();
        if (after == before) {
            RC_ASSERT(application.undoStack().count() == 0);
            return;
        }
        RC_ASSERT(application.undoStack().count() == 1);
        for (int round = 0; round < 2; ++round) {
            RC_ASSERT(application.undo());
            RC_ASSERT(content() == before);
            RC_ASSERT(application.redo());
            RC_ASSERT(content() == after);
        }
    }

    long long randomInner() const {
        return *rc::gen::inRange<long long>(1, static_cast<long long>(plain.positions.size()));
    }

    LyqApplication& application = LyqApplication::instance();
    undowalk::SectionNumbers numbers;
    PlainContent plain = randomContent();
    model::Held<model::Table> table = tableOf(plain);
};

/** What splitting makes of a plain table; the boundary in the middle is the table's, checked on its own. */
void splitPlain(PlainContent& plain, long long index, float middle) {
    plain.positions.insert(plain.positions.begin() + index, middle);
    const PlainSection half = plain.sections[at(index)];
    plain.sections.insert(plain.sections.begin() + index, half);
}

bool continuesOrFails(const PlainSection& section) {
    return section.type == int(Lyr::Continue) || section.type == int(Lyr::Custom);
}

}  // namespace

RC_GTEST_PROP(TableEditsProperty, a_split_gives_two_sections_that_meet_in_the_middle, ()) {
    Edited edited;
    const long long index = edited.randomInner();
    const auto sections = model::sectionsOf(*edited.table);
    RC_ASSERT(edited.edit([&] { return lys::editor::splitSection(*edited.table, index); }));
    const auto positions = model::listOf<float>(*edited.table, Lyr::PositionList);
    RC_ASSERT(positions.size() == edited.plain.positions.size() + 1);
    const float middle = positions[at(index)];
    const long double low = edited.plain.positions[at(index) - 1];
    const long double high = edited.plain.positions[at(index)];
    RC_ASSERT(middle >= low);
    RC_ASSERT(middle <= high);
    RC_ASSERT(std::fabs(middle - (low + high) / 2) <=
              std::nextafter(std::fabs(middle), std::numeric_limits<float>::infinity()) - std::fabs(middle));
    splitPlain(edited.plain, index, middle);
    checkTable(*edited.table, edited.plain);
    auto others = model::sectionsOf(*edited.table);
    others.erase(others.begin() + index);
    RC_ASSERT(others == sections);
}

RC_GTEST_PROP(TableEditsProperty, a_split_changes_no_colour_but_those_of_the_section, ()) {
    Edited edited;
    const long long index = edited.randomInner();
    const PlainContent before = edited.plain;
    const model::Held<model::Table> untouched = tableOf(before);
    RC_ASSERT(lys::editor::splitSection(*edited.table, index));
    const auto positions = model::listOf<float>(*edited.table, Lyr::PositionList);
    splitPlain(edited.plain, index, positions[at(index)]);
    checkColors(*edited.table, edited.plain);
    // A constant looks as before inside of it too, as long as it is wider than nothing.
    const float low = before.positions[at(index) - 1];
    const float high = before.positions[at(index)];
    const bool isConstant = before.sections[at(index)].type == int(Lyr::Constant) && positions[at(index)] > low &&
                            positions[at(index)] < high;
    for (const float value : samplesOf(positions)) {
        if (value > high || value < low || isConstant) {
            model::Color now = model::untouched;
            model::Color then = model::untouched;
            RC_ASSERT(edited.table->getColor(value, now) == untouched->getColor(value, then));
            RC_ASSERT(model::sameBits(now, then));
        }
    }
}

RC_GTEST_PROP(TableEditsProperty, merging_both_halves_takes_a_split_back, ()) {
    Edited edited;
    const long long index = edited.randomInner();
    RC_ASSERT(lys::editor::splitSection(*edited.table, index));
    RC_ASSERT(lys::editor::mergeSections(*edited.table, SectionRange(index, index + 1)));
    checkTable(*edited.table, edited.plain);
    checkColors(*edited.table, edited.plain);
}

RC_GTEST_PROP(TableEditsProperty, a_merge_stretches_the_first_section_to_the_end_of_the_last, ()) {
    Edited edited;
    const long long first = edited.randomInner();
    const long long last = edited.randomInner();
    const PlainContent before = edited.plain;
    const auto content = edited.content();
    const auto sections = model::sectionsOf(*edited.table);
    const bool done = edited.edit([&] { return lys::editor::mergeSections(*edited.table, SectionRange(first, last)); });
    RC_ASSERT(done == (last > first));
    if (!done) {
        RC_ASSERT(edited.content() == content);
        RC_ASSERT(edited.application.undoStack().count() == 0);
        return;
    }
    auto& plain = edited.plain;
    plain.sections.erase(plain.sections.begin() + first + 1, plain.sections.begin() + last + 1);
    plain.positions.erase(plain.positions.begin() + first, plain.positions.begin() + last);
    checkTable(*edited.table, plain);
    checkColors(*edited.table, plain);
    RC_ASSERT(model::sectionsOf(*edited.table)[at(first)] == sections[at(first)]);
    edited.checkUndo(content);
    // Beyond the merged sections nothing looks different, unless a neighbour goes on like one of them.
    const float low = before.positions[at(first) - 1];
    const float high = before.positions[at(last)];
    const model::Held<model::Table> untouched = tableOf(before);
    const bool followed =
        continuesOrFails(before.sections[at(last) + 1]) || continuesOrFails(before.sections[at(first) - 1]);
    for (const float value : samplesOf(before.positions)) {
        if (!followed && (value > high || value < low)) {
            model::Color now = model::untouched;
            model::Color then = model::untouched;
            RC_ASSERT(edited.table->getColor(value, now) == untouched->getColor(value, then));
            RC_ASSERT(model::sameBits(now, then));
        }
    }
}

RC_GTEST_PROP(TableEditsProperty, what_cannot_be_split_or_merged_stays_as_it_is, ()) {
    Edited edited;
    const auto content = edited.content();
    const auto last = static_cast<long long>(edited.plain.sections.size()) - 1;
    const long long outside = *rc::gen::element<long long>(-1000000007, -2, -1, 0, last, last + 1, last + 1000000007);
    const long long other = *rc::gen::inRange<long long>(-3, last + 4);
    RC_ASSERT(!edited.edit([&] { return lys::editor::splitSection(*edited.table, outside); }));
    RC_ASSERT(!edited.edit([&] { return lys::editor::mergeSections(*edited.table, SectionRange(outside, other)); }));
    RC_ASSERT(!edited.edit([&] { return lys::editor::mergeSections(*edited.table, SectionRange(other, outside)); }));
    RC_ASSERT(edited.content() == content);
    RC_ASSERT(edited.application.undoStack().count() == 0);
}

RC_GTEST_PROP(TableEditsProperty, every_edit_is_undone_bit_for_bit, ()) {
    Edited edited;
    const auto content = edited.content();
    const long long index = edited.randomInner();
    LyrObject& section = *model::sectionsOf(*edited.table)[at(index)];
    const int kind = *rc::gen::inRange(0, 4);
    const Lyrenum type = randomSection().type;
    const float number = float(*rc::gen::inRange(0, 65)) / 64.0f;
    RC_ASSERT(edited.edit([&] {
        return kind == 0   ? lys::editor::splitSection(*edited.table, index)
               : kind == 1 ? lys::editor::changeType(section, type)
               : kind == 2 ? lys::editor::setColorPoint(section, index % 2, {number, 0.5f, 0.25f, number})
                           : lys::editor::setOpacity(section, number);
    }));
    edited.checkUndo(content);
}

RC_GTEST_PROP(TableEditsProperty, a_boundary_moves_between_its_neighbours_and_no_other_does, ()) {
    std::vector<float> positions = randomContent().positions;
    const std::vector<float> before = positions;
    const long long index = *rc::gen::inRange<long long>(-1, static_cast<long long>(positions.size()) + 1);
    const float wanted = randomPosition();
    const float bounds[] = {randomPosition(), randomPosition()};
    const LyrValuePair<float> range{std::min(bounds[0], bounds[1]), std::max(bounds[0], bounds[1])};
    lys::editor::movePosition(positions, index, wanted, range);
    RC_ASSERT(positions.size() == before.size());
    RC_ASSERT(std::is_sorted(positions.begin(), positions.end()));
    for (long long i = 0; i < static_cast<long long>(before.size()); ++i) {
        if (i != index) {
            RC_ASSERT(positions[at(i)] == before[at(i)]);
            continue;
        }
        // The nearest place in the range, then the nearest between both neighbours.
        constexpr float INFINITE = std::numeric_limits<float>::infinity();
        const float low = i > 0 ? before[at(i) - 1] : -INFINITE;
        const float high = at(i) + 1 < before.size() ? before[at(i) + 1] : INFINITE;
        RC_ASSERT(positions[at(i)] == std::clamp(std::clamp(wanted, range.first, range.second), low, high));
    }
}

RC_GTEST_PROP(TableEditsProperty, a_coloured_point_leaves_all_others, ()) {
    Edited edited;
    const long long index = edited.randomInner();
    const long long point = *rc::gen::inRange<long long>(0, 5);
    LyrObject& section = *model::sectionsOf(*edited.table)[at(index)];
    const model::Color color(0.125f, 0.25f, 0.5f, 0.75f);
    RC_ASSERT(edited.edit([&] { return lys::editor::setColorPoint(section, point, color); }));
    RC_ASSERT(model::sameBits(lys::editor::colorPointOf(section, point), color));
    PlainSection& plain = edited.plain.sections[at(index)];
    const float values[] = {color.red, color.green, color.blue, color.alpha};
    for (std::size_t c = 0; c < 4; ++c) {
        while (plain.points[c].size() <= at(point)) {
            plain.points[c].push_back({float(plain.points[c].size()), c == 3 ? 1.0f : 0.0f});
        }
        plain.points[c][at(point)].y = values[c];
    }
    checkTable(*edited.table, edited.plain);
}
