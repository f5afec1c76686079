#include "LayerForTests.h"

#include <gtest/gtest.h>
#include <lyr_core/LyrModulePresence.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lys_core/LyqSession.h>

#include <QSignalSpy>

namespace {

class Session : public ::testing::Test {
protected:
    ~Session() override {
        for (LyqLayer* layer : session.layers()) {
            session.removeLayer(layer);
        }
        session.setDocument(nullptr);
    }
    static LyqLayer* as(const LyrObjectPtr& object) { return static_cast<LyqLayer*>(object.get()); }

    LyqSession& session = LyqSession::instance();
    LyrObjectPtr plain{new LayerForTests(false)};
    LyrObjectPtr colored{new LayerForTests(true)};
    LyrObjectPtr other{new LayerForTests(true)};
};

}  // namespace

TEST_F(Session, keeps_the_document_alive_and_tells_of_another) {
    QSignalSpy changed(&session, &LyqSession::documentChanged);
    auto* document = new LyrObject;
    session.setDocument(document);
    EXPECT_EQ(session.document(), document);
    EXPECT_EQ(document->getRefCount(), 1);
    session.setDocument(document);
    EXPECT_EQ(changed.count(), 1);
    session.setDocument(nullptr);
    EXPECT_EQ(changed.count(), 2);
}

TEST_F(Session, another_document_takes_layers_and_reports_away) {
    session.addLayer(as(colored));
    LyqReport report;
    report.id = "x";
    session.addReport(report);
    session.setDocument(new LyrObject);
    EXPECT_TRUE(session.layers().empty());
    EXPECT_TRUE(session.reports().empty());
    EXPECT_EQ(session.activeLayer(), nullptr);
    EXPECT_EQ(colored->getRefCount(), 1);
}

TEST_F(Session, the_last_coloured_layer_that_was_added_is_the_active_one) {
    EXPECT_TRUE(session.addLayer(as(plain)));
    EXPECT_EQ(session.activeLayer(), nullptr);
    EXPECT_TRUE(session.addLayer(as(colored)));
    EXPECT_EQ(session.activeLayer(), as(colored));
    EXPECT_TRUE(session.addLayer(as(other)));
    EXPECT_EQ(session.activeLayer(), as(other));
    EXPECT_FALSE(session.setActiveLayer(as(plain)));
    EXPECT_TRUE(session.setActiveLayer(as(colored)));
    EXPECT_TRUE(session.removeLayer(as(colored)));
    EXPECT_EQ(session.activeLayer(), as(other));
}

TEST_F(Session, a_layer_is_added_once_and_in_order) {
    QSignalSpy changed(&session, &LyqSession::layersChanged);
    EXPECT_TRUE(session.addLayer(as(plain)));
    EXPECT_FALSE(session.addLayer(as(plain)));
    EXPECT_FALSE(session.addLayer(nullptr));
    EXPECT_TRUE(session.addLayer(as(colored)));
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(session.layers(), (std::vector<LyqLayer*>{as(plain), as(colored)}));
    EXPECT_FALSE(session.removeLayer(as(other)));
}

TEST_F(Session, a_module_that_goes_takes_its_layers_along) {
    session.addLayer(as(plain));
    session.addLayer(as(colored));
    EXPECT_EQ(session.removeLayersOf("elsewhere"), 0);
    { const LyrModulePresence leaving("test_layers"); }
    EXPECT_TRUE(session.layers().empty());
    EXPECT_EQ(plain->getRefCount(), 1);
}

TEST_F(Session, a_report_takes_the_place_of_one_with_its_id) {
    LyqReport report;
    report.id = "x";
    report.title = "first";
    session.addReport(report);
    report.title = "second";
    session.addReport(report);
    ASSERT_EQ(session.reports().size(), 1u);
    EXPECT_EQ(session.reports()[0].title, "second");
}
