#include <colortable/ColortableIdentifiers.h>
#include <colortable/viewport/LyrColorLookupTableAnnotationContainer.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyqAnnotation.h>
#include <lys_core/LyqAnnotationGroup.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqWorkspaceWidget.h>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <memory>
#include <vector>

namespace {

struct Errors : LyrError::Listener {
    std::vector<int> codes;
    bool errorEmitted(const LyrError::Message& message) override {
        codes.push_back(message.getCode());
        return true;
    }
};

class AnnotationContainer : private ToolkitApplication, public testing::Test {
protected:
    void SetUp() override {
        LyqApplication::instance();
        view.reset(dynamic_cast<LyqWorkspaceWidget*>(LyrMetaClass::create("LyqSliceWidget")));
        ASSERT_TRUE(view);
        view->addProperty(Lyr::ColorLookupTableAnnotationContainer, &owner);
        owner.setValue(LyrObjectLink(container.get(), nullptr, -1));
        for (LyrObjectPtr& annotation : annotations) {
            const LyrObjectRefPtr made("LyqColorLookupTableAnnotation", Lyr::TransientScope);
            annotation = made;
            at(annotation).setVisible(true);
        }
    }

    static LyqAnnotation& at(const LyrObjectPtr& object) { return dynamic_cast<LyqAnnotation&>(*object); }
    static LyrObjectLink link(const LyrObjectPtr& object) { return LyrObjectLink(object.get(), nullptr, -1); }
    LyrValueArrayPropertyIF<LyrObjectLink>& list() {
        return *LyrValueArrayOPPtr<LyrValueArrayPropertyIF<LyrObjectLink>>(container.get(),
                                                                           Lyrenum("AnnotationList", true))
                    .get();
    }
    bool init(const std::vector<LyrObjectLink>& links) {
        return list().initArray(0, static_cast<long long>(links.size()) - 1, links.data());
    }

    Errors errors;
    LyrObjectRefPtr container{"LyrColorLookupTableAnnotationContainer", Lyr::TransientScope};
    LyrObjectPtr annotations[3];
    LyrObjectParentLinkOP owner;
    std::unique_ptr<LyqWorkspaceWidget> view;
    const LyrObjectPtr& a = annotations[0];
    const LyrObjectPtr& b = annotations[1];
    const LyrObjectPtr& c = annotations[2];
};

constexpr int WRONG_TYPE = static_cast<int>(0xF3CB0005u);

}  // namespace

TEST_F(AnnotationContainer, knows_the_workspace_widget_that_holds_it) {
    EXPECT_EQ(lyrGetValue(container.get(), Lyr::WorkspaceWidget, LyrObjectLink()).getLink(), view.get());
    EXPECT_FALSE(lyrSetValue(container.get(), Lyr::WorkspaceWidget, LyrObjectLink()));
    const LyrObjectRefPtr loose("LyrColorLookupTableAnnotationContainer", Lyr::TransientScope);
    EXPECT_TRUE(lyrGetValue(loose.get(), Lyr::WorkspaceWidget, LyrObjectLink(view.get(), nullptr, -1)).isNull());
    EXPECT_EQ(lyrGetValue<Lyrenum>(container.get(), Lyr::Rendering, -1), 1);
    EXPECT_TRUE(errors.codes.empty());
}

TEST_F(AnnotationContainer, takes_annotations_only_and_refuses_a_list_as_a_whole) {
    ASSERT_TRUE(init({link(a)}));
    EXPECT_FALSE(init({link(b), link(container)}));
    const LyrObjectLink wrong = link(container);
    EXPECT_FALSE(list().insertArrayItems(0, 0, &wrong));
    EXPECT_FALSE(list().setArrayItems(0, 0, &wrong));
    ASSERT_EQ(list().getArraySize(), 1);
    EXPECT_TRUE(at(a).isVisible());
    EXPECT_TRUE(init({LyrObjectLink(), link(a)}));
    EXPECT_EQ(list().getArraySize(), 2);
}

TEST_F(AnnotationContainer, puts_its_annotations_into_the_group_of_the_widget) {
    EXPECT_EQ(view->getAnnotationGroup(Lyr::ColorLookupTableAnnotationGroup), nullptr);
    ASSERT_TRUE(init({link(a), LyrObjectLink()}));
    LyqAnnotationGroup* group = view->getAnnotationGroup(Lyr::ColorLookupTableAnnotationGroup);
    ASSERT_NE(group, nullptr);
    EXPECT_EQ(at(a).getGroup(), group);
    const LyrObjectLink more = link(b);
    ASSERT_TRUE(list().insertArrayItems(0, 0, &more));
    EXPECT_EQ(at(b).getGroup(), group);
    const LyrObjectLink over = link(c);
    ASSERT_TRUE(list().setArrayItems(1, 1, &over));
    EXPECT_EQ(at(c).getGroup(), group);
    EXPECT_TRUE(errors.codes.empty());
}

TEST_F(AnnotationContainer, hides_what_a_new_list_leaves_out) {
    ASSERT_TRUE(init({link(a), link(b)}));
    ASSERT_TRUE(init({link(c), link(a)}));
    EXPECT_TRUE(at(a).isVisible());
    EXPECT_FALSE(at(b).isVisible());
    EXPECT_TRUE(at(c).isVisible());
    const LyrObjectLink over = link(b);
    ASSERT_TRUE(list().setArrayItems(1, 1, &over));
    EXPECT_FALSE(at(a).isVisible());
}

TEST_F(AnnotationContainer, hides_what_is_removed_even_if_it_is_listed_twice) {
    ASSERT_TRUE(init({link(a), link(a), link(b)}));
    ASSERT_TRUE(list().removeArrayItems(0, 0));
    EXPECT_EQ(list().getArraySize(), 2);
    EXPECT_FALSE(at(a).isVisible());
    EXPECT_TRUE(at(b).isVisible());
    EXPECT_FALSE(list().removeArrayItems(5, 6));
    EXPECT_TRUE(at(b).isVisible());
}

TEST_F(AnnotationContainer, hides_nothing_when_annotations_are_inserted) {
    ASSERT_TRUE(init({link(a)}));
    const LyrObjectLink more[] = {link(b), link(a)};
    ASSERT_TRUE(list().insertArrayItems(1, 2, more));
    EXPECT_TRUE(at(a).isVisible());
    EXPECT_TRUE(at(b).isVisible());
}

TEST_F(AnnotationContainer, holds_its_annotations_and_lets_others_hold_them) {
    ASSERT_TRUE(init({link(a)}));
    LyrObject* raw = annotations[0].get();
    annotations[0] = LyrObjectPtr();
    EXPECT_EQ(raw->getRefCount(), 1);
    const LyrObjectPtr kept(raw);
    ASSERT_TRUE(init({}));
    EXPECT_EQ(raw->getRefCount(), 1);
}

TEST_F(AnnotationContainer, lists_without_a_workspace_widget_but_says_so) {
    const LyrObjectRefPtr loose("LyrColorLookupTableAnnotationContainer", Lyr::TransientScope);
    const LyrObjectLink one = link(a);
    LyrValueArrayOPPtr<LyrValueArrayPropertyIF<LyrObjectLink>> annotationList(loose.get(),
                                                                              Lyrenum("AnnotationList", true));
    EXPECT_TRUE(annotationList->initArray(0, 0, &one));
    EXPECT_EQ(errors.codes, std::vector<int>{WRONG_TYPE});
    EXPECT_EQ(at(a).getGroup(), nullptr);
}
