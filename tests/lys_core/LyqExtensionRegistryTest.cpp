#include <gtest/gtest.h>
#include <lyr_core/LyrModulePresence.h>
#include <lys_core/LyqActionExtension.h>
#include <lys_core/LyqDockExtension.h>
#include <lys_core/LyqExtensionRegistry.h>

#include <QSignalSpy>
#include <QStringList>

namespace {

class Action : public LyqActionExtension {
public:
    Action(const char* id, const char* module, QStringList* log = nullptr)
        : LyqActionExtension(id, id, module), mLog(log) {}
    ~Action() override {
        if (mLog) {
            *mLog << "destroyed " + id();
        }
    }
    void trigger(QWidget*) override {}

private:
    QStringList* mLog;
};

class Dock : public LyqDockExtension {
public:
    Dock(const char* id, const char* module) : LyqDockExtension(id, id, module) {}
    QWidget* createWidget(QWidget*) override { return nullptr; }
};

/** Takes out what a test left. */
class Registry : public ::testing::Test {
protected:
    ~Registry() override {
        registry.removeAllFrom("a");
        registry.removeAllFrom("b");
    }
    LyqExtensionRegistry& registry = LyqExtensionRegistry::instance();
};

}  // namespace

TEST_F(Registry, tells_of_what_is_added_and_finds_it_by_kind_and_id) {
    QSignalSpy added(&registry, &LyqExtensionRegistry::added);
    EXPECT_TRUE(registry.add(std::make_unique<Action>("x", "a")));
    EXPECT_TRUE(registry.add(std::make_unique<Dock>("x", "a")));
    EXPECT_EQ(added.count(), 2);
    EXPECT_EQ(registry.extensions().size(), 2u);
    EXPECT_EQ(registry.extensionsOf<LyqDockExtension>().size(), 1u);
    ASSERT_TRUE(registry.find<LyqActionExtension>("x"));
    EXPECT_EQ(registry.find<LyqActionExtension>("x")->module(), "a");
    EXPECT_FALSE(registry.find<LyqActionExtension>("y"));
}

TEST_F(Registry, refuses_null_a_missing_id_or_module_and_an_id_that_its_kind_has) {
    EXPECT_FALSE(registry.add(nullptr));
    EXPECT_FALSE(registry.add(std::make_unique<Action>("", "a")));
    EXPECT_FALSE(registry.add(std::make_unique<Action>("x", "")));
    EXPECT_TRUE(registry.add(std::make_unique<Action>("x", "a")));
    EXPECT_FALSE(registry.add(std::make_unique<Action>("x", "b")));
    EXPECT_EQ(registry.extensions().size(), 1u);
}

TEST_F(Registry, removes_all_of_a_module_the_last_first_and_tells_before_each_goes) {
    QStringList log;
    QObject::connect(&registry, &LyqExtensionRegistry::aboutToRemove, &registry,
                     [&](LyqExtension* extension) { log << "remove " + extension->id(); });
    registry.add(std::make_unique<Action>("1", "a", &log));
    registry.add(std::make_unique<Action>("2", "b", &log));
    registry.add(std::make_unique<Action>("3", "a", &log));
    EXPECT_EQ(registry.removeAllFrom("a"), 2);
    EXPECT_EQ(log, QStringList({"remove 3", "destroyed 3", "remove 1", "destroyed 1"}));
    ASSERT_EQ(registry.extensions().size(), 1u);
    EXPECT_EQ(registry.extensions()[0]->id(), "2");
    registry.disconnect(&registry);
    registry.removeAllFrom("b");
}

TEST_F(Registry, a_removed_extension_is_not_found_by_those_who_hear_of_its_end) {
    registry.add(std::make_unique<Action>("1", "a"));
    std::size_t seen = 99;
    const auto connection = QObject::connect(&registry, &LyqExtensionRegistry::aboutToRemove, &registry,
                                             [&] { seen = registry.extensions().size(); });
    EXPECT_TRUE(registry.remove(registry.extensions()[0]));
    EXPECT_EQ(seen, 0u);
    EXPECT_FALSE(registry.remove(nullptr));
    QObject::disconnect(connection);
}

TEST_F(Registry, what_a_module_forgot_goes_with_it) {
    QStringList log;
    registry.add(std::make_unique<Action>("1", "a", &log));
    { const LyrModulePresence leaving("a"); }
    EXPECT_EQ(log, QStringList({"destroyed 1"}));
    EXPECT_TRUE(registry.extensions().empty());
}

TEST_F(Registry, a_changed_state_is_told_for_registered_ones_alone) {
    registry.add(std::make_unique<Action>("1", "a"));
    const Action stranger("2", "a");
    QSignalSpy changed(&registry, &LyqExtensionRegistry::changed);
    registry.announceChange(&stranger);
    EXPECT_EQ(changed.count(), 0);
    registry.announceChange(registry.extensions()[0]);
    EXPECT_EQ(changed.count(), 1);
}
