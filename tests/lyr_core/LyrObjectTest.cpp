#include <lyr_core/LyrBooleanOP.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrReadOnlyProxyExtension.h>
#include <lyr_core/LyrRoleManager.h>
#include <lyr_core/LyrUndoJournal.h>

#include <gtest/gtest.h>

namespace {

class Node : public LyrObject {
public:
    Node() { registerProperties(); }
    Node(const Node& other) : LyrObject(other) {
        registerProperties();
        copyFrom(other);
    }
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("TestNode", sizeof(Node), &LyrObject::metaClass(), new LyrClassFactory<Node>,
                                       "tests", 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }

    LyrSingleValueOP<LyrSingleValuePropertyIF<float>> weight;
    LyrObjectParentLinkListOP children;

private:
    void registerProperties() {
        addProperty(Lyr::Size, &weight);
        addProperty(Lyr::Object, &children);
        weight.setFlags(LyrFlags::DATA, 0);
        children.setFlags(LyrFlags::DATA, 0);
        setFlags(LyrFlags::DATA, 0);
    }
};

struct Ear : LyrIOC {
    int heard = 0;
    bool iocCallback(Message& message) override {
        ++heard;
        return LyrIOC::iocCallback(message);
    }
};

}  // namespace

TEST(LyrObject, dies_with_its_last_reference) {
    Node::metaClass();
    const LyrClassManager::SearchPattern nodes("TestNode");
    const auto before = LyrClassManager::getObjectCount(nodes);
    {
        const LyrObjectRefPtr node("TestNode", 7);
        ASSERT_TRUE(node);
        EXPECT_EQ(node->getScope(), 7);
        EXPECT_EQ(LyrClassManager::getObjectCount(nodes), before + 1);
    }
    EXPECT_EQ(LyrClassManager::getObjectCount(nodes), before);
}

TEST(LyrObject, tells_its_listeners_of_a_change_once_and_not_of_an_equal_write) {
    LyrObjectPtr node(new Node);
    Ear ear;
    LyrObjectIOCPtr handle(&ear, node.get());
    EXPECT_TRUE(lyrSetValue(node.get(), Lyr::Size, 2.0f));
    EXPECT_TRUE(lyrSetValue(node.get(), Lyr::Size, 2.0f));
    EXPECT_EQ(ear.heard, 1);
}

TEST(LyrObject, children_come_back_as_the_same_objects_after_undo) {
    struct Steps : LyrUndoJournal::Sink {
        std::vector<std::unique_ptr<LyrUndoStep>> steps;
        void stepFinished(std::unique_ptr<LyrUndoStep> step) override { steps.push_back(std::move(step)); }
    } sink;
    auto& journal = LyrUndoJournal::instance();
    journal.setSink(&sink);
    LyrObjectPtr parent(new Node);
    auto* node = static_cast<Node*>(parent.get());
    LyrObject* child = new Node;
    const LyrObjectLink link(child, nullptr, -1);
    const auto token = journal.begin(LyrString::fromUtf8("add"));
    EXPECT_TRUE(node->children.initArray(0, 0, &link));
    EXPECT_TRUE(journal.end(token));
    ASSERT_EQ(sink.steps.size(), 1u);
    EXPECT_EQ(child->getParentLink().getOwner(), node);
    EXPECT_TRUE(sink.steps[0]->undo());
    EXPECT_EQ(node->children.getArraySize(), 0);
    EXPECT_EQ(child->getParentLink().getOwner(), nullptr);
    EXPECT_TRUE(sink.steps[0]->redo());
    ASSERT_EQ(node->children.getArraySize(), 1);
    EXPECT_EQ(node->children.view()[0].getLink(), child);
    EXPECT_EQ(child->getParentLink().getOwner(), node);
    journal.setSink(nullptr);
}

TEST(LyrObject, a_copy_owns_copies_of_the_children) {
    LyrObjectPtr parent(new Node);
    auto* node = static_cast<Node*>(parent.get());
    LyrObject* child = new Node;
    child->setNameTemplate("first");
    child->setScope(3);
    lyrSetValue(child, Lyr::Size, 4.0f);
    const LyrObjectLink link(child, nullptr, -1);
    ASSERT_TRUE(node->children.initArray(0, 0, &link));
    LyrObjectPtr copy(static_cast<LyrObject*>(LyrObject::metaClass().clone(node)));
    ASSERT_TRUE(copy);
    auto* copied = static_cast<Node*>(copy.get());
    ASSERT_EQ(copied->children.getArraySize(), 1);
    LyrObject* copiedChild = copied->children.view()[0].getLink();
    EXPECT_NE(copiedChild, child);
    EXPECT_EQ(lyrGetValue(copiedChild, Lyr::Size, 0.0f), 4.0f);
    EXPECT_STREQ(copiedChild->getNameTemplate(), "first");
    EXPECT_EQ(copiedChild->getScope(), 3);
    EXPECT_EQ(copiedChild->getParentLink().getOwner(), copied);
}

TEST(LyrReadOnlyProxyExtension, shows_the_value_of_another_object_and_refuses_writes) {
    LyrObjectPtr source(new Node);
    LyrObjectPtr shown(new Node);
    lyrSetValue(source.get(), Lyr::Size, 5.0f);
    LyrReadOnlyProxyExtensionIF<float> proxy;
    auto* target = static_cast<Node*>(shown.get());
    target->weight.addPropertyExtension(&proxy);
    bool ok = false;
    EXPECT_NE(proxy.requestProperty(source.get(), Lyr::Size, &ok), nullptr);
    EXPECT_TRUE(ok);
    Ear ear;
    LyrObjectIOCPtr handle(&ear, shown.get());
    EXPECT_EQ(lyrGetValue(shown.get(), Lyr::Size, 0.0f), 5.0f);
    lyrSetValue(source.get(), Lyr::Size, 6.0f);
    EXPECT_EQ(ear.heard, 1);
    EXPECT_EQ(lyrGetValue(shown.get(), Lyr::Size, 0.0f), 6.0f);
    EXPECT_FALSE(lyrSetValue(shown.get(), Lyr::Size, 1.0f));
}
