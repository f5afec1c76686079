#include "colortable/model/ModelTools.h"
#include "scarce/EachAllocation.h"

#include <colortable/legend/LyrColorLookupTableRenderSettings.h>
#include <colortable/presets/LyrPresetColortableProxyObject.h>
#include <colortable/viewport/LyrColorLookupTableAnnotationContainer.h>
#include <colortable/viewport/LyrColorLookupTableRenderObject.h>
#include <lyr_core/LyrClassManager.h>
#include <lys_core/LyqApplication.h>

#include <string>

// The objects beside the tables (settings of a legend, what is saved as a preset, what a view lists) with each
// allocation failing in turn.

namespace {

constexpr const char* LONG_TEXT = "a caption that is too long to be kept inside of a string itself";
constexpr const char* OTHER_TEXT = "another caption that is too long to be kept inside of a string";
constexpr const char* DEFAULT_FONT = "Arial,10,-1,5,50,0,0,0,0,0";

long long objectCount() {
    return LyrClassManager::getObjectCount(LyrClassManager::SearchPattern::ofModule("lys_colortable"));
}

Lyrenum templateId() {
    return Lyrenum("DescriptionTemplate", true);
}

std::string textOf(const LyrObject* object, Lyrenum id) {
    return lyrGetValue<const char*>(object, id, "");
}

/** The stored values of settings in words. */
std::string describe(const LyrObject* settings) {
    std::string text = textOf(settings, Lyr::Font) + "|" + textOf(settings, templateId());
    text += "|" + std::to_string(lyrGetValue(settings, Lyr::Thickness, -1LL));
    for (const Lyrenum id : {Lyr::Position, Lyr::Alignment, Lyr::TextPosition, Lyr::TextAlignment, Lyr::Rendering}) {
        text += "|" + std::to_string(int(lyrGetValue(settings, id, Lyrenum(-1))));
    }
    return text;
}

struct Nothing {
    Nothing() { LyqApplication::instance(); }
    long long before = objectCount();
};

struct Settings : Nothing {
    Settings() {
        lyrSetValue<const char*>(settings.get(), templateId(), LONG_TEXT);
        lyrSetValue(settings.get(), Lyr::Thickness, 40LL);
        lyrSetValue(settings.get(), Lyr::Position, Lyrenum(Lyr::Bottom));
        before = describe(settings.get());
    }
    LyrObjectRefPtr settings{"LyrColorLookupTableRenderSettings", Lyr::DocumentScope};
    std::string before;
    long long objects = objectCount();
};

struct SettingsInAction : Settings {
    ~SettingsInAction() { LyqApplication::instance().userActionAborted(token); }
    LyqApplication::UserActionToken token = LyqApplication::instance().userActionBegin(QStringLiteral("action"));
};

template <class Fixture, class Work>
void expectWholeWrite(Work work) {
    const int failures = scarce::withEachAllocationFailing<Fixture>(
        [&](Fixture& fixture) { return work(fixture.settings.get()); },
        [](Fixture& fixture, bool done) { EXPECT_EQ(describe(fixture.settings.get()) == fixture.before, !done); });
    EXPECT_GT(failures, 0);
}

/** A new object of a class with its defaults, or none and an error. */
template <class IsWhole>
void expectWholeObject(const char* className, IsWhole isWhole) {
    const int failures = scarce::withEachAllocationFailing<Nothing>(
        [&](Nothing&) {
            const LyrObjectRefPtr object(className, Lyr::DocumentScope);
            return object && isWhole(object.get());
        },
        [](Nothing& fixture, bool) { EXPECT_EQ(objectCount(), fixture.before); });
    EXPECT_GT(failures, 3);
}

}  // namespace

TEST(ScarceSettings, are_made_with_all_of_their_defaults_or_with_an_error) {
    LyqApplication::instance();
    LyrObjectPtr(new LyrColorLookupTableRenderObject);  // finds the plug-in, which stays
    expectWholeObject("LyrColorLookupTableRenderSettings", [](const LyrObject* object) {
        return object->getPropertyCount() == 13 &&
               std::string_view(lyrGetValue<const char*>(object, Lyr::Font, "")) == DEFAULT_FONT &&
               lyrGetValue(object, Lyr::Thickness, -1LL) == 12;
    });
    expectWholeObject("LyrPresetColortableProxyObject", [](const LyrObject* object) {
        const LyrObject* table = lyrGetValue(object, Lyr::ColorLookupTable, LyrObjectLink()).getLink();
        LyrRGBA<float> color;
        return table && static_cast<const LyrColorLookupTable*>(table)->getColor(0.0f, color);
    });
    expectWholeObject("LyrColorLookupTableAnnotationContainer",
                      [](const LyrObject* object) { return object->getPropertyCount() == 3; });
}

TEST(ScarceSettings, are_copied_whole_or_not_at_all) {
    int complete = 0;
    const int failures = scarce::withEachAllocationFailing<Settings>(
        [&](Settings& fixture) {
            LyrClass* copy = LyrColorLookupTableRenderSettings::metaClass().clone(fixture.settings.get());
            const bool made = copy != nullptr;
            if (made) {
                const auto* object = static_cast<LyrObject*>(copy);
                const auto same = [&](Lyrenum id) {
                    return std::string_view(lyrGetValue<const char*>(object, id, "")) ==
                           lyrGetValue<const char*>(fixture.settings.get(), id, "");
                };
                complete += same(Lyr::Font) && same(templateId()) ? 1 : 0;
                EXPECT_EQ(object->getPropertyCount(), 13);
                EXPECT_TRUE(same(Lyr::Font) && same(templateId())) << "a copy that lacks something";
            }
            LyrMetaClass::destruct(copy, true);
            return made;
        },
        [](Settings& fixture, bool) {
            EXPECT_EQ(describe(fixture.settings.get()), fixture.before);
            EXPECT_EQ(objectCount(), fixture.objects);
        });
    EXPECT_GT(failures, 3);
    EXPECT_GT(complete, 0);
}

TEST(ScarceSettings, are_written_whole_or_not_at_all) {
    const auto caption = [](LyrObject* settings) {
        return lyrSetValue<const char*>(settings, templateId(), OTHER_TEXT);
    };
    const auto font = [](LyrObject* settings) {
        return lyrSetValue<const char*>(settings, Lyr::Font, "Liberation Sans,12,-1,5,50,0,0,0,0,0");
    };
    const auto reset = [](LyrObject* settings) {
        return LyrSingleValueOPPtr<LyrSingleValuePropertyIF<long long>>(settings, Lyr::Thickness)->resetData();
    };
    expectWholeWrite<Settings>(caption);
    expectWholeWrite<Settings>(font);
    expectWholeWrite<SettingsInAction>(caption);
    expectWholeWrite<SettingsInAction>(font);
    expectWholeWrite<SettingsInAction>(reset);
    expectWholeWrite<SettingsInAction>(
        [](LyrObject* settings) { return lyrSetValue(settings, Lyr::Alignment, Lyrenum(Lyr::Top)); });
}

TEST(ScarceSettings, tell_when_an_assignment_or_a_reset_is_not_complete) {
    const auto judge = [](Settings& fixture, bool) { EXPECT_EQ(objectCount(), fixture.objects); };
    struct Two : Settings {
        Two() { objects = objectCount(); }
        LyrObjectRefPtr other{"LyrColorLookupTableRenderSettings", Lyr::DocumentScope};
        long long counted = objects = objectCount();
    };
    EXPECT_GT(scarce::withEachAllocationFailing<Two>(
                  [](Two& fixture) { return fixture.other->copyFrom(*fixture.settings.get()); }, judge),
              0);
    struct OtherFont : Settings {
        bool isSet = lyrSetValue<const char*>(settings.get(), Lyr::Font, "Liberation Sans,12,-1,5,50,0,0,0,0,0");
    };
    EXPECT_GT(scarce::withEachAllocationFailing<OtherFont>(
                  [](Settings& fixture) { return fixture.settings->runAction(Lyr::ResetToDefaults); },
                  [&](Settings& fixture, bool done) {
                      judge(fixture, done);
                      // All that could be reset is; the font is the one value that needs memory.
                      EXPECT_EQ(textOf(fixture.settings.get(), Lyr::Font) == DEFAULT_FONT, done);
                      EXPECT_EQ(lyrGetValue(fixture.settings.get(), Lyr::Thickness, -1LL), 12);
                  }),
              0);
}

TEST(ScarceSettings, give_their_caption_or_keep_the_last_one) {
    const int failures = scarce::withEachAllocationFailing<Settings>(
        [](Settings& fixture) {
            // What a read gives in want of memory is the caption of the last read: here there was none.
            const char* text = lyrGetValue<const char*>(fixture.settings.get(), Lyr::Description, "");
            EXPECT_TRUE(!text || std::string_view(text) == LONG_TEXT);
            return text != nullptr;
        },
        [](Settings& fixture, bool) { EXPECT_EQ(textOf(fixture.settings.get(), Lyr::Description), LONG_TEXT); });
    EXPECT_GT(failures, 0);
}

TEST(ScarceSettings, saved_as_a_preset_with_a_table_are_copied_whole_or_not_at_all) {
    struct Preset : Nothing {
        Preset() {
            lyrSetValue(proxy.get(), Lyr::AbsoluteMode, Lyrenum(1));
            objects = objectCount();
        }
        LyrObjectRefPtr proxy{"LyrPresetColortableProxyObject", Lyr::DocumentScope};
        long long objects = 0;
    };
    const int failures = scarce::withEachAllocationFailing<Preset>(
        [](Preset& preset) {
            LyrClass* copy = LyrPresetColortableProxyObject::metaClass().clone(preset.proxy.get());
            const bool made = copy != nullptr;
            if (made) {
                const LyrObject* table =
                    lyrGetValue(static_cast<LyrObject*>(copy), Lyr::ColorLookupTable, LyrObjectLink()).getLink();
                LyrRGBA<float> color;
                EXPECT_TRUE(table && static_cast<const LyrColorLookupTable*>(table)->getColor(0.0f, color));
            }
            LyrMetaClass::destruct(copy, true);
            return made;
        },
        [](Preset& preset, bool) { EXPECT_EQ(objectCount(), preset.objects); });
    EXPECT_GT(failures, 20);
}
