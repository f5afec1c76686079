#include "AnalysisTools.h"

#include <analysis/LibraryInit.h>
#include <gtest/gtest.h>
#include <lys_core/LyqAnalysisExtension.h>
#include <lys_core/LyqExtensionRegistry.h>
#include <lys_core/LyqTranslations.h>

#include <QLocale>

#include <limits>

namespace {

/** What the user reads after an analysis of one value everywhere failed, and after a report was not saved. */
struct Messages : ToolkitApplication {
    Messages(const char* id, float value) {
        LYQANALYSIS::LibraryInit::init();
        LyrVolume::Description description;
        description.size = {4, 4, 4};
        const LyrObjectPtr document(
            new LyrVolumeObject(LyrVolume::create(description, std::vector<float>(64, value)), "block", "block"));
        const auto run =
            LyqExtensionRegistry::instance().find<LyqAnalysisExtension>(id)->createRun(document.get(), analysis);
        EXPECT_FALSE(run->compute([](double) { return true; }, analysis));
        cancelled = "left from before";
        EXPECT_FALSE(run->compute([](double) { return false; }, cancelled));
    }
    ~Messages() { LYQANALYSIS::LibraryInit::cleanup(); }
    QString analysis;
    QString cancelled;
};

}  // namespace

TEST(AnalysisMessage, tells_which_analysis_failed_why_and_what_to_do) {
    const Messages said("wall-thickness", 7.0f);
    EXPECT_EQ(said.analysis,
              "Wall thickness: all finite samples of the volume have the same value, so no threshold divides them into "
              "air and "
              "material; open another volume or give a threshold");
    EXPECT_TRUE(said.cancelled.isEmpty());
}

TEST(AnalysisMessage, is_in_the_users_language) {
    const ToolkitApplication application;
    ASSERT_TRUE(LyqTranslations::install(QLocale(QLocale::German)));
    const Messages constant("wall-thickness", 7.0f);
    const Messages nothing("defect-volume", std::numeric_limits<float>::quiet_NaN());
    LyqTranslations::remove();
    EXPECT_TRUE(
        constant.analysis.startsWith(QString::fromUtf8("Wandstärke: alle endlichen Werte des Volumens sind gleich")))
        << constant.analysis.toStdString();
    EXPECT_TRUE(nothing.analysis.startsWith(QString::fromUtf8("Defektvolumen: das Volumen hat keine endlichen Werte")))
        << nothing.analysis.toStdString();
}
