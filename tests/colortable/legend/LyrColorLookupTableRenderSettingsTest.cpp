#include <colortable/ColortableIdentifiers.h>
#include <colortable/LibraryInit.h>
#include <colortable/legend/LyrColorLookupTableRenderSettings.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrRGBA.h>
#include <lys_core/ApplicationPlaceholders.h>

#include <gtest/gtest.h>

namespace {

Lyrenum templateId() {
    return Lyrenum("DescriptionTemplate", true);
}

std::string textOf(const LyrObject* object, Lyrenum id) {
    const char* text = lyrGetValue<const char*>(object, id, "(none)");
    return text ? text : "(null)";
}

/** Settings of another module, for wall thicknesses, and a class derived from them. */
class ThicknessSettings : public LyrColorLookupTableRenderSettings {
public:
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("LyrWallThicknessColorLookupTableRenderSettings", sizeof(ThicknessSettings),
                                       &LyrColorLookupTableRenderSettings::metaClass(),
                                       new LyrClassFactory<ThicknessSettings>, "tests", 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
};

class DerivedSettings : public ThicknessSettings {
public:
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("TestDerivedSettings", sizeof(DerivedSettings), &ThicknessSettings::metaClass(),
                                       nullptr, "tests", 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
};

/** Settings of other modules, each with a class of its own. */
template <int WHICH>
class OtherSettings : public LyrColorLookupTableRenderSettings {
public:
    static constexpr const char* NAMES[] = {"LyrVarianceComparisonColorLookupTableRenderSettings",
                                            "LyrMatchingColorLookupTableRenderSettings",
                                            "LyrDefectDetectionColorLookupTableRenderSettings"};
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta(NAMES[WHICH], sizeof(OtherSettings),
                                       &LyrColorLookupTableRenderSettings::metaClass(), nullptr, "tests", 0, nullptr, 0,
                                       0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
};

/** Notes the properties that an object tells of. */
struct PropertyEar : LyrIOC {
    std::vector<int> properties;
    bool iocCallback(Message& message) override {
        properties.push_back(message.getPropertyID());
        return LyrIOC::iocCallback(message);
    }
};

class RenderSettings : public testing::Test {
protected:
    void SetUp() override { LYQCOLORTABLE::LibraryInit::init(); }
    void TearDown() override { LYQCOLORTABLE::LibraryInit::cleanup(); }
    LyrObjectRefPtr settings{"LyrColorLookupTableRenderSettings", Lyr::DocumentScope};
};

}  // namespace

TEST_F(RenderSettings, have_their_defaults_when_new) {
    const LyrObject* object = settings.get();
    EXPECT_EQ(lyrGetValue(object, Lyr::Color, LyrRGBA<float>()), LyrRGBA<float>(1.0f, 1.0f, 1.0f, 1.0f));
    EXPECT_EQ(lyrGetValue(object, Lyr::OutlineColor, LyrRGBA<float>()), LyrRGBA<float>(0.0f, 0.0f, 0.0f, 1.0f));
    EXPECT_EQ(textOf(object, Lyr::Font), "Arial,10,-1,5,50,0,0,0,0,0");
    EXPECT_EQ(lyrGetValue<Lyrenum>(object, Lyr::HasOutline, -1), 1);
    EXPECT_EQ(lyrGetValue<long long>(object, Lyr::Thickness, -1), 12);
    EXPECT_EQ(lyrGetValue<float>(object, Lyr::Size, -1.0f), 0.7f);
    EXPECT_EQ(lyrGetValue<Lyrenum>(object, Lyr::Position, -1), Lyr::Left);
    EXPECT_EQ(lyrGetValue<Lyrenum>(object, Lyr::Alignment, -1), Lyr::Center);
    EXPECT_EQ(lyrGetValue<Lyrenum>(object, Lyr::TextPosition, -1), Lyr::Right);
    EXPECT_EQ(lyrGetValue<Lyrenum>(object, Lyr::TextAlignment, -1), Lyr::Right);
    EXPECT_EQ(textOf(object, templateId()), "");
    EXPECT_EQ(lyrGetValue<Lyrenum>(object, Lyr::Rendering, -1), 1);
    EXPECT_EQ(textOf(object, Lyr::Description), "");
}

TEST_F(RenderSettings, list_their_properties_in_the_order_of_registration) {
    const Lyrenum expected[] = {Lyr::Color,      Lyr::OutlineColor, Lyr::Font,          Lyr::HasOutline,
                                Lyr::Rendering,  Lyr::Thickness,    Lyr::Size,          Lyr::Position,
                                Lyr::Alignment,  Lyr::TextPosition, Lyr::TextAlignment, templateId(),
                                Lyr::Description};
    ASSERT_EQ(settings->getPropertyCount(), 13);
    for (int i = 0; i < 13; ++i) {
        const LyrProperty* property = settings->getPropertyAt(i);
        EXPECT_EQ(property->getPropertyID(), expected[i]);
        EXPECT_EQ(property->getFlags(0x30000000u), 0x20000000u);
        EXPECT_EQ(property->getFlags(0x400000u), i == 12 ? 0x400000u : 0u);
        EXPECT_EQ(property->isStored(), i != 12);
    }
    EXPECT_EQ(settings->getFlags(0x30000000u), 0x20000000u);
    EXPECT_EQ(settings->getProtectedFlags() & 0x110100u, 0x110100u);
}

TEST_F(RenderSettings, copies_have_equal_values_and_a_caption_of_their_own) {
    lyrSetValue(settings.get(), Lyr::Thickness, 30LL);
    lyrSetValue(settings.get(), Lyr::Position, Lyr::Top);
    lyrSetValue<const char*>(settings.get(), templateId(), "A");
    const LyrObjectPtr copy(static_cast<LyrObject*>(LyrObject::metaClass().clone(settings.get())));
    const LyrObjectRefPtr assigned("LyrColorLookupTableRenderSettings", Lyr::DocumentScope);
    ASSERT_TRUE(LyrColorLookupTableRenderSettings::metaClass().copy(assigned.get(), settings.get()));
    for (const LyrObject* other : {copy.get(), assigned.get()}) {
        EXPECT_EQ(lyrGetValue<long long>(other, Lyr::Thickness, -1), 30);
        EXPECT_EQ(lyrGetValue<Lyrenum>(other, Lyr::Position, -1), Lyr::Top);
        EXPECT_EQ(textOf(other, Lyr::Description), "A");
    }
    lyrSetValue<const char*>(copy.get(), templateId(), "B");
    EXPECT_EQ(textOf(copy.get(), Lyr::Description), "B");
    EXPECT_EQ(textOf(settings.get(), Lyr::Description), "A");
}

TEST_F(RenderSettings, only_take_the_values_of_their_own_class) {
    const LyrObjectRefPtr table("LyrColorLookupTable", Lyr::DocumentScope);
    EXPECT_FALSE(LyrColorLookupTableRenderSettings::metaClass().copy(settings.get(), table.get()));
}

TEST_F(RenderSettings, have_a_caption_that_cannot_be_written) {
    EXPECT_FALSE(lyrSetValue<const char*>(settings.get(), Lyr::Description, "X"));
    EXPECT_EQ(textOf(settings.get(), Lyr::Description), "");
}

TEST_F(RenderSettings, tell_of_the_caption_when_its_template_changes) {
    PropertyEar ear;
    const LyrObjectIOCPtr handle(&ear, settings.get());
    lyrSetValue<const char*>(settings.get(), templateId(), "Caption");
    EXPECT_EQ(ear.properties, (std::vector<int>{Lyr::Description, templateId()}));
}

TEST_F(RenderSettings, expand_type_and_unit_by_their_class) {
    const char* const written = "%{value.type} %{value.unit}";
    lyrSetValue<const char*>(settings.get(), templateId(), written);
    EXPECT_EQ(textOf(settings.get(), Lyr::Description), " ");
    for (LyrObject* object :
         {static_cast<LyrObject*>(new ThicknessSettings), static_cast<LyrObject*>(new DerivedSettings)}) {
        const LyrObjectPtr held(object);
        lyrSetValue<const char*>(object, templateId(), written);
        EXPECT_EQ(textOf(object, Lyr::Description), "Wall thickness [%l]");
        EXPECT_EQ(textOf(object, templateId()), written);
    }
}

TEST_F(RenderSettings, keep_placeholders_as_they_are_after_the_last_cleanup) {
    lyrSetValue<const char*>(settings.get(), templateId(), "%{value.type}");
    LYQCOLORTABLE::LibraryInit::cleanup();
    EXPECT_EQ(textOf(settings.get(), Lyr::Description), "%{value.type}");
    LYQCOLORTABLE::LibraryInit::init();
    EXPECT_EQ(textOf(settings.get(), Lyr::Description), "");
}

TEST_F(RenderSettings, go_back_to_their_defaults_as_a_whole_and_one_by_one) {
    lyrSetValue(settings.get(), Lyr::Size, 0.2f);
    settings->getProperty(Lyr::Size)->resetData();
    EXPECT_EQ(lyrGetValue<float>(settings.get(), Lyr::Size, -1.0f), 0.7f);
    lyrSetValue(settings.get(), Lyr::Size, 0.2f);
    lyrSetValue<const char*>(settings.get(), Lyr::Font, "junk");
    lyrSetValue<const char*>(settings.get(), templateId(), "T");
    EXPECT_TRUE(settings->runAction(Lyr::ResetToDefaults));
    EXPECT_EQ(lyrGetValue<float>(settings.get(), Lyr::Size, -1.0f), 0.7f);
    EXPECT_EQ(textOf(settings.get(), Lyr::Font), "Arial,10,-1,5,50,0,0,0,0,0");
    EXPECT_EQ(textOf(settings.get(), Lyr::Description), "");
}

TEST_F(RenderSettings, name_the_values_of_all_four_kinds_and_nothing_else) {
    const LyrObjectPtr objects[] = {LyrObjectPtr(new OtherSettings<0>), LyrObjectPtr(new OtherSettings<1>),
                                    LyrObjectPtr(new OtherSettings<2>)};
    const char* const expected[] = {"Variance [%l]", "Fitpoint deviation [%l]", "Defect volume [%l]"};
    for (int i = 0; i < 3; ++i) {
        lyrSetValue<const char*>(objects[i].get(), templateId(), "%{value.type} %{value.unit}");
        EXPECT_EQ(textOf(objects[i].get(), Lyr::Description), expected[i]);
    }
    bool error = true;
    EXPECT_EQ(
        ApplicationPlaceholders::internalToDisplayText(QStringLiteral("<%{value.type}%{value.unit}>"), nullptr, &error),
        QStringLiteral("<>"));
    EXPECT_FALSE(error);
    const LyrObjectRefPtr table("LyrColorLookupTable", Lyr::DocumentScope);
    EXPECT_EQ(ApplicationPlaceholders::internalToDisplayText(QStringLiteral("<%{value.type}>"), table.get()),
              QStringLiteral("<>"));
}

TEST_F(RenderSettings, are_copied_in_the_order_of_their_members) {
    const LyrObjectRefPtr source("LyrColorLookupTableRenderSettings", Lyr::DocumentScope);
    lyrSetValue(source.get(), Lyr::Color, LyrRGBA<float>(0.1f, 0.2f, 0.3f, 1.0f));
    lyrSetValue(source.get(), Lyr::OutlineColor, LyrRGBA<float>(0.4f, 0.2f, 0.3f, 1.0f));
    lyrSetValue<const char*>(source.get(), Lyr::Font, "Courier,12,-1,5,50,0,0,0,0,0");
    lyrSetValue<Lyrenum>(source.get(), Lyr::HasOutline, 0);
    lyrSetValue(source.get(), Lyr::Thickness, 31LL);
    lyrSetValue(source.get(), Lyr::Size, 0.25f);
    lyrSetValue(source.get(), Lyr::Position, Lyr::Bottom);
    lyrSetValue(source.get(), Lyr::Alignment, Lyr::Top);
    lyrSetValue(source.get(), Lyr::TextPosition, Lyr::Left);
    lyrSetValue(source.get(), Lyr::TextAlignment, Lyr::Left);
    lyrSetValue<const char*>(source.get(), templateId(), "Caption");
    lyrSetValue<Lyrenum>(source.get(), Lyr::Rendering, 0);
    PropertyEar ear;
    const LyrObjectIOCPtr handle(&ear, settings.get());
    ASSERT_TRUE(LyrColorLookupTableRenderSettings::metaClass().copy(settings.get(), source.get()));
    EXPECT_EQ(ear.properties,
              (std::vector<int>{Lyr::Color, Lyr::OutlineColor, Lyr::Font, Lyr::HasOutline, Lyr::Thickness, Lyr::Size,
                                Lyr::Position, Lyr::Alignment, Lyr::TextPosition, Lyr::TextAlignment, Lyr::Description,
                                templateId(), Lyr::Rendering}));
    EXPECT_EQ(lyrGetValue(settings.get(), Lyr::Color, LyrRGBA<float>()), LyrRGBA<float>(0.1f, 0.2f, 0.3f, 1.0f));
    EXPECT_EQ(textOf(settings.get(), Lyr::Font), "Courier,12,-1,5,50,0,0,0,0,0");
    EXPECT_EQ(lyrGetValue<float>(settings.get(), Lyr::Size, -1.0f), 0.25f);
    EXPECT_EQ(lyrGetValue<Lyrenum>(settings.get(), Lyr::Alignment, -1), Lyr::Top);
    EXPECT_EQ(lyrGetValue<Lyrenum>(settings.get(), Lyr::TextAlignment, -1), Lyr::Left);
    EXPECT_EQ(textOf(settings.get(), Lyr::Description), "Caption");
    EXPECT_EQ(lyrGetValue<Lyrenum>(settings.get(), Lyr::Rendering, -1), 0);
}

TEST_F(RenderSettings, have_a_caption_of_their_own_when_copied_and_outlive_their_source) {
    LyrObjectPtr copy;
    {
        const LyrObjectRefPtr source("LyrColorLookupTableRenderSettings", Lyr::DocumentScope);
        lyrSetValue<const char*>(source.get(), templateId(), "Source %{value.type}.");
        copy = static_cast<LyrObject*>(LyrColorLookupTableRenderSettings::metaClass().clone(source.get()));
    }
    ASSERT_NE(copy.get(), nullptr);
    EXPECT_EQ(textOf(copy.get(), Lyr::Description), "Source .");
    const LyrProperty* description = copy->getProperty(Lyr::Description);
    ASSERT_NE(description->firstExtension(), nullptr);
    EXPECT_EQ(description->firstExtension()->getProtectedFlags() & 0x100000u, 0u);
    EXPECT_EQ(description->getFlags(0x20400000u), 0x20400000u);
    EXPECT_FALSE(lyrSetValue<const char*>(copy.get(), Lyr::Description, "X"));
}

TEST_F(RenderSettings, copied_onto_themselves_stay_as_they_are) {
    lyrSetValue<const char*>(settings.get(), templateId(), "Own");
    EXPECT_TRUE(LyrColorLookupTableRenderSettings::metaClass().copy(settings.get(), settings.get()));
    EXPECT_EQ(textOf(settings.get(), Lyr::Description), "Own");
}
