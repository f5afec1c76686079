#include "scarce/EachAllocation.h"

#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrI18n.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrQuantity.h>
#include <lyr_core/LyrUnitIdentifiers.h>
#include <lys_core/ApplicationPlaceholders.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqUnitConverter.h>
#include <lys_core/LyrApplicationObject.h>

#include <QLocale>

// Units, numbers as text and placeholders of captions with each allocation failing in turn.

namespace {

constexpr const char* LONG_TEXT = "a text that is too long to be kept inside of a string itself";

struct Nothing {
    Nothing() {
        LyqApplication::instance();
        QLocale();  // the toolkit does not bear that its first one finds no memory
    }
};

const auto ALWAYS = [](const auto&, bool) {};

LyrString resolveLong(const LyrString&, const LyrObject*) {
    return LyrString(LONG_TEXT);
}

}  // namespace

TEST(ScarceTexts, of_units_and_quantities_are_whole_or_null) {
    // One with a name of 16 characters: shorter ones lie inside of their string.
    const Lyrenum unit = LyrQuantity::findUnit(Lyr::Area, LyrString("um2"));
    ASSERT_NE(unit, Lyrenum(-1));
    const LyrString whole("SquareMicrometer");
    EXPECT_GT(scarce::withEachAllocationFailing<Nothing>(
                  [&](Nothing&) {
                      const LyrString name = LyrQuantity::getUnitName(unit);
                      EXPECT_TRUE(name.isNull() || name == whole);
                      return !name.isNull() && !LyrQuantity::getUnitSymbol(unit).isNull() &&
                             !LyrQuantity::getQuantityName(Lyr::Area).isNull();
                  },
                  ALWAYS),
              0);
    EXPECT_GT(scarce::withEachAllocationFailing<Nothing>(
                  [](Nothing&) {
                      const auto units = LyrQuantity::getUnits(Lyr::Length);
                      EXPECT_TRUE(units.empty() || units.size() == 8u);
                      return !units.empty() && LyrQuantity::getQuantities().size() == 6u;
                  },
                  ALWAYS),
              1);
    const LyrString untranslated(LONG_TEXT);
    EXPECT_GT(scarce::withEachAllocationFailing<Nothing>(
                  [&](Nothing&) {
                      const LyrString text = LyrI18n::translate("Quantity", LONG_TEXT);
                      EXPECT_TRUE(text.isNull() || text == untranslated);
                      return !text.isNull();
                  },
                  ALWAYS),
              0);
}

TEST(ScarceTexts, of_display_units_are_chosen_or_left) {
    struct Units : Nothing {
        LyrDisplayUnits units;
        bool done = units.setDisplayUnit(Lyr::Length, Lyr::Inch);
    };
    EXPECT_GT(scarce::withEachAllocationFailing<Units>(
                  [](Units& held) { return held.units.setDisplayUnit(Lyr::Length, Lyr::Millimeter); },
                  [](Units& held, bool done) {
                      EXPECT_EQ(held.units.getDisplayUnit(Lyr::Length),
                                done ? Lyrenum(Lyr::Millimeter) : Lyrenum(Lyr::Inch));
                      EXPECT_EQ(held.units.getDisplayUnit(Lyr::Area), Lyrenum(Lyr::SquareMillimeter));
                  }),
              0);
    const LyrDisplayUnits units;
    const ScarceMemory memory(0, ScarceMemory::Failing::ForGood);
    EXPECT_EQ(units.getDisplayUnit(Lyr::Area), Lyrenum(Lyr::SquareMillimeter));
    EXPECT_FALSE(memory.hasFailed());
}

TEST(ScarceTexts, typed_by_a_user_are_read_or_refused) {
    struct Converter : Nothing {
        LyqUnitConverter converter{Lyr::Length};
    };
    EXPECT_GT(scarce::withEachAllocationFailing<Converter>(
                  [](Converter& held) {
                      bool ok = false;
                      const double value = held.converter.unitStringToInternal(QStringLiteral("1.5 Centimeter"), &ok);
                      EXPECT_EQ(value, ok ? 15.0 : 0.0);
                      return ok;
                  },
                  ALWAYS),
              0);
    EXPECT_GT(scarce::withEachAllocationFailing<Converter>(
                  [](Converter& held) { return held.converter.internalToDisplayString(2.5) == QLatin1String("2.5"); },
                  ALWAYS),
              0);
}

TEST(ScarceTexts, of_placeholders_are_put_in_or_left_as_they_are) {
    struct Registered : Nothing {
        Registered() {
            ApplicationPlaceholders::add(LyrString("test.long"), LyrString("Long"), LyrString(), resolveLong, "scarce");
        }
        ~Registered() { ApplicationPlaceholders::removeAllFrom("scarce"); }
        QString result;
    };
    const QString before = QStringLiteral("It is %{test.long}.");
    EXPECT_GT(scarce::withEachAllocationFailing<Registered>(
                  [&](Registered& held) {
                      held.result = ApplicationPlaceholders::internalToDisplayText(before, nullptr);
                      return held.result != before;
                  },
                  [&](Registered& held, bool done) {
                      const QString text = QStringLiteral("It is %1.").arg(QLatin1String(LONG_TEXT));
                      EXPECT_EQ(held.result, done ? text : before);
                  }),
              0);
}

TEST(ScarceTexts, of_placeholders_are_registered_whole_or_not_at_all) {
    struct Fresh : Nothing {
        ~Fresh() { ApplicationPlaceholders::removeAllFrom("a module with a name that is longer than usual"); }
        LyrString key{"test.a_key_that_is_longer_than_a_short_string"};
        LyrString name{"a name that is longer than a short string"};
    };
    EXPECT_GT(scarce::withEachAllocationFailing<Fresh>(
                  [](Fresh& fresh) {
                      return ApplicationPlaceholders::add(fresh.key, fresh.name, fresh.name, resolveLong,
                                                          "a module with a name that is longer than usual");
                  },
                  [](Fresh& fresh, bool done) { EXPECT_EQ(ApplicationPlaceholders::contains(fresh.key), done); }),
              0);
}
