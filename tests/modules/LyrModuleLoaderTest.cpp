#include "ModuleTools.h"
#include "Process.h"

#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrMetaClass.h>

#include <QCoreApplication>
#include <QEvent>
#include <QObject>

#include <dlfcn.h>

#include <gmock/gmock.h>

#include <Sanitizers.h>

#include <algorithm>

using namespace modules;
using testing::HasSubstr;
using testing::Not;

namespace {

/** Posted events need an application. A process that ends inside a case leaves it alone. */
class Application : public testing::Environment {
public:
    void SetUp() override {
        static int count = 1;
        static char name[] = "test_modules";
        static char* arguments[] = {name, nullptr};
        mApplication = new QCoreApplication(count, arguments);
    }
    void TearDown() override { delete mApplication; }

private:
    QCoreApplication* mApplication = nullptr;
};
[[maybe_unused]] const testing::Environment* const sApplication = testing::AddGlobalTestEnvironment(new Application);

class LyrModuleLoaderTest : public testing::Test {
protected:
    LyrModuleLoaderTest() { LyqApplication::instance().undoStack().clear(); }
    ~LyrModuleLoaderTest() override {
        LyqApplication::instance().undoStack().clear();
        for (const LyrString& module : LyrModuleLoader::getLoadedModules()) {
            ADD_FAILURE() << module.utf8() << " is left loaded";
            while (LyrModuleLoader::isLoaded(module.utf8()) && loader.unload(module.utf8())) {
            }
        }
    }

    void expectGone(const char* module, const std::string& path) {
        EXPECT_FALSE(LyrModuleLoader::isLoaded(module));
        EXPECT_EQ(LyrIdentifierRegistry::moduleRegistrationCount(module), 0);
        EXPECT_EQ(LyrMetaClass::moduleClassCount(module), 0);
        EXPECT_FALSE(process::maps(path));
    }

    Loader loader;
};

/** Loads, initialises, uses and unloads the tables' module. */
void runRound(Loader& loader, int round) {
    ASSERT_TRUE(loader.load(COLORTABLE_MODULE)) << loader.message;
    ASSERT_TRUE(loader.init()) << loader.message;
    {
        const LyrObjectRefPtr table = newTable();
        ASSERT_TRUE(table);
        {
            const LyqApplication::UserActionScope action(QStringLiteral("Use"));
            ASSERT_TRUE(setParameters(table, 0.0f, 8.0f, 1.0f));
            ASSERT_TRUE(table->runAction(id(round % 2 ? "CreateStepped" : "CreateSmooth")));
        }
        ASSERT_EQ(positionsOf(table).size(), round % 2 ? 9u : 2u);
        ASSERT_TRUE(LyqApplication::instance().undo());
        ASSERT_EQ(positionsOf(table), (std::vector<float>{-1.0f, 1.0f}));
    }
    LyqApplication::instance().undoStack().clear();
    ASSERT_TRUE(loader.cleanup()) << loader.message;
    ASSERT_TRUE(loader.unload()) << loader.message;
}

}  // namespace

TEST_F(LyrModuleLoaderTest, a_module_brings_its_names_and_classes_and_takes_them_along) {
    expectGone(COLORTABLE, COLORTABLE_MODULE);
    EXPECT_FALSE(newTable());
    ASSERT_TRUE(loader.load(COLORTABLE_MODULE)) << loader.message;
    EXPECT_TRUE(LyrModuleLoader::isLoaded(COLORTABLE));
    EXPECT_TRUE(process::maps(COLORTABLE_MODULE));
    EXPECT_GE(LyrIdentifierRegistry::moduleRegistrationCount(COLORTABLE), 41);
    EXPECT_GE(LyrMetaClass::moduleClassCount(COLORTABLE), 2);
    ASSERT_TRUE(loader.init());
    {
        const LyrObjectRefPtr table = newTable();
        ASSERT_TRUE(table);
        EXPECT_EQ(positionsOf(table), (std::vector<float>{-1.0f, 1.0f}));
        ASSERT_TRUE(setParameters(table, 0.0f, 2.0f, 1.0f));
        ASSERT_TRUE(table->runAction(id("CreateStepped")));
        EXPECT_EQ(positionsOf(table), (std::vector<float>{0.0f, 1.0f, 2.0f}));
    }
    ASSERT_TRUE(loader.cleanup());
    ASSERT_TRUE(loader.unload()) << loader.message;
    expectGone(COLORTABLE, COLORTABLE_MODULE);
    EXPECT_FALSE(newTable());
}

TEST_F(LyrModuleLoaderTest, names_keep_their_numbers_when_their_module_comes_back) {
    const char* names[] = {"Rainbow", "PositionList", "CreateSphereSegmentStepped", "Percent"};
    int numbers[4];
    ASSERT_TRUE(loader.load(COLORTABLE_MODULE)) << loader.message;
    std::transform(std::begin(names), std::end(names), numbers, [](const char* name) { return int(id(name)); });
    ASSERT_TRUE(loader.unload());
    EXPECT_EQ(LyrIdentifierRegistry::find("PositionList"), -1);
    EXPECT_EQ(LyrIdentifierRegistry::nameOf(numbers[1]), "PositionList");
    // Another module in between takes no number of it.
    ASSERT_TRUE(loader.load(fixture("good"))) << loader.message;
    EXPECT_EQ(std::count(std::begin(numbers), std::end(numbers), int(id("TestGoodName"))), 0);
    ASSERT_TRUE(loader.load(COLORTABLE_MODULE)) << loader.message;
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(int(id(names[i])), numbers[i]) << names[i];
    }
    ASSERT_TRUE(loader.unload());
    ASSERT_TRUE(loader.unload("test_good"));
}

TEST_F(LyrModuleLoaderTest, loading_and_unloading_again_and_again_leaves_nothing_behind) {
    constexpr int WARM_UP = 50;
    // LYS_MODULE_ROUNDS asks for more than a test run has time for.
    const char* wanted = std::getenv("LYS_MODULE_ROUNDS");
    const int rounds = wanted ? std::atoi(wanted) : SANITIZED ? 80 : 400;
    long long heap = 0;
    long long resident = 0;
    long long files = 0;
    long long mappings = 0;
    for (int round = 0; round < rounds && !HasFatalFailure(); ++round) {
        if (round == WARM_UP) {
            heap = process::heapBytes();
            resident = process::residentBytes();
            files = process::openFileCount();
            mappings = process::mappingCount();
        }
        runRound(loader, round);
        if (round % 50 == 0) {
            expectGone(COLORTABLE, COLORTABLE_MODULE);
        }
    }
    std::printf("%d rounds: heap %+lld bytes, resident %+lld bytes, %+lld files, %+lld mappings\n", rounds - WARM_UP,
                process::heapBytes() - heap, process::residentBytes() - resident, process::openFileCount() - files,
                process::mappingCount() - mappings);
    EXPECT_EQ(process::openFileCount(), files);
    if (!SANITIZED) {
        // Sanitizers keep freed memory and what they know of each library.
        EXPECT_LT(process::heapBytes() - heap, 16 * 1024);
        EXPECT_LT(process::residentBytes() - resident, 512 * 1024);
        EXPECT_LE(process::mappingCount(), mappings + 4);
    }
}

TEST_F(LyrModuleLoaderTest, a_module_with_living_objects_stays_and_the_message_counts_them) {
    ASSERT_TRUE(loader.load(COLORTABLE_MODULE)) << loader.message;
    {
        const LyrObjectRefPtr first = newTable();
        const LyrObjectRefPtr second = newTable();
        EXPECT_FALSE(loader.unload());
        EXPECT_THAT(loader.message, HasSubstr("lys_colortable"));
        EXPECT_THAT(loader.message, HasSubstr("2 of class LyrColorLookupTable,"));
        EXPECT_THAT(loader.message, HasSubstr("6 of class LyrColorLookupTable::Section"));
        EXPECT_THAT(loader.message, Not(HasSubstr("undo history")));
        EXPECT_TRUE(LyrModuleLoader::isLoaded(COLORTABLE));
        ASSERT_TRUE(setParameters(first, 0.0f, 1.0f, 0.5f));
        EXPECT_TRUE(first->runAction(id("CreateStepped"))) << "a refused unload changes nothing";
    }
    EXPECT_TRUE(loader.unload()) << loader.message;
    expectGone(COLORTABLE, COLORTABLE_MODULE);
}

TEST_F(LyrModuleLoaderTest, a_module_stays_while_the_undo_history_holds_its_objects) {
    ASSERT_TRUE(loader.load(COLORTABLE_MODULE)) << loader.message;
    {
        const LyrObjectRefPtr table = newTable();
        const LyqApplication::UserActionScope action(QStringLiteral("Change"));
        ASSERT_TRUE(lyrSetValue(table.get(), id("AutoLabel"), Lyrenum(0)));
    }
    EXPECT_FALSE(loader.unload());
    EXPECT_THAT(loader.message, HasSubstr("undo history"));
    EXPECT_THAT(loader.message, HasSubstr("clear"));
    ASSERT_TRUE(LyqApplication::instance().undo());
    EXPECT_FALSE(loader.unload()) << "what can be redone is held as well";
    EXPECT_THAT(loader.message, HasSubstr("undo history"));
    LyqApplication::instance().undoStack().clear();
    EXPECT_TRUE(loader.unload()) << loader.message;
    expectGone(COLORTABLE, COLORTABLE_MODULE);
}

TEST_F(LyrModuleLoaderTest, loads_are_counted) {
    ASSERT_TRUE(loader.load(COLORTABLE_MODULE)) << loader.message;
    ASSERT_TRUE(loader.load(COLORTABLE_MODULE)) << loader.message;
    {
        const LyrObjectRefPtr table = newTable();
        EXPECT_TRUE(loader.unload()) << "another user is left";
        EXPECT_TRUE(LyrModuleLoader::isLoaded(COLORTABLE));
        EXPECT_FALSE(loader.unload());
    }
    EXPECT_TRUE(loader.unload());
    expectGone(COLORTABLE, COLORTABLE_MODULE);
    EXPECT_FALSE(loader.unload());
    EXPECT_THAT(loader.message, HasSubstr("is not loaded"));
}

TEST_F(LyrModuleLoaderTest, initialisations_are_counted_and_the_last_unload_takes_back_what_is_left) {
    const auto initialised = [] { return LyrIdentifierRegistry::registrationCount("TestGoodInitialised"); };
    EXPECT_FALSE(loader.init("test_good"));
    EXPECT_THAT(loader.message, HasSubstr("is not loaded"));
    ASSERT_TRUE(loader.load(fixture("good"))) << loader.message;
    EXPECT_FALSE(loader.cleanup("test_good"));
    EXPECT_THAT(loader.message, HasSubstr("is not initialised"));
    EXPECT_TRUE(loader.init("test_good"));
    EXPECT_TRUE(loader.init("test_good"));
    EXPECT_TRUE(loader.init("test_good"));
    EXPECT_EQ(initialised(), 3);
    EXPECT_TRUE(loader.cleanup("test_good"));
    EXPECT_EQ(initialised(), 2);
    EXPECT_TRUE(loader.unload("test_good")) << loader.message;
    EXPECT_EQ(initialised(), 0);
    EXPECT_FALSE(loader.cleanup("test_good"));
    expectGone("test_good", fixture("good"));
}

TEST_F(LyrModuleLoaderTest, a_refused_unload_leaves_the_module_initialised) {
    ASSERT_TRUE(loader.load(fixture("good"))) << loader.message;
    ASSERT_TRUE(loader.init("test_good"));
    {
        const LyrObjectRefPtr thing("TestGoodThing", Lyr::DocumentScope);
        ASSERT_TRUE(thing);
        EXPECT_FALSE(loader.unload("test_good"));
        EXPECT_THAT(loader.message, HasSubstr("1 of class TestGoodThing"));
        EXPECT_EQ(LyrIdentifierRegistry::registrationCount("TestGoodInitialised"), 1);
    }
    EXPECT_TRUE(loader.unload("test_good")) << loader.message;
}

TEST_F(LyrModuleLoaderTest, two_modules_come_and_go_by_themselves) {
    ASSERT_TRUE(loader.load(fixture("good"))) << loader.message;
    ASSERT_TRUE(loader.load(COLORTABLE_MODULE)) << loader.message;
    std::vector<std::string> names;
    for (const LyrString& name : LyrModuleLoader::getLoadedModules()) {
        names.emplace_back(name.utf8());
    }
    EXPECT_THAT(names, testing::UnorderedElementsAre("lys_colortable", "test_good"));
    LyrObjectRefPtr thing("TestGoodThing", Lyr::DocumentScope);
    EXPECT_TRUE(loader.unload()) << loader.message;
    EXPECT_FALSE(loader.unload("test_good"));
    thing.release();
    EXPECT_TRUE(loader.unload("test_good")) << loader.message;
}

TEST_F(LyrModuleLoaderTest, a_second_file_with_the_name_of_a_loaded_module_is_refused) {
    Folder folder;
    const std::string copy = folder.write("copy.so", readFile(fixture("good")));
    ASSERT_TRUE(loader.load(fixture("good"))) << loader.message;
    EXPECT_FALSE(loader.load(copy));
    EXPECT_THAT(loader.message, HasSubstr(fixture("good")));
    std::filesystem::create_symlink(fixture("good"), folder / "link.so");
    EXPECT_TRUE(loader.load(folder / "link.so")) << "the same file by another path: " << loader.message;
    EXPECT_TRUE(loader.unload("test_good"));
    EXPECT_TRUE(loader.unload("test_good"));
    ASSERT_TRUE(loader.load(copy)) << loader.message;
    std::filesystem::remove(copy);
    EXPECT_FALSE(loader.load(fixture("good"))) << "the loaded one's file is gone, and it still is another";
    EXPECT_TRUE(loader.unload("test_good")) << loader.message;
}

TEST_F(LyrModuleLoaderTest, an_unload_says_so_when_the_library_stays_in_memory) {
    ASSERT_TRUE(loader.load(COLORTABLE_MODULE)) << loader.message;
    void* other = dlopen(COLORTABLE_MODULE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_TRUE(other);
    EXPECT_FALSE(loader.unload());
    EXPECT_THAT(loader.message, HasSubstr("stays in memory"));
    EXPECT_FALSE(LyrModuleLoader::isLoaded(COLORTABLE));
    ASSERT_TRUE(loader.load(COLORTABLE_MODULE)) << loader.message;
    EXPECT_TRUE(newTable()) << "it can be taken up again";
    dlclose(other);
    EXPECT_TRUE(loader.unload()) << loader.message;
    expectGone(COLORTABLE, COLORTABLE_MODULE);
}

TEST_F(LyrModuleLoaderTest, what_is_queued_for_objects_of_the_module_happens_before_it_goes) {
    /** Keeps a table until it is deleted, and drops it when told so by an event. */
    struct Keeper : QObject {
        LyrObjectPtr kept;
        bool event(QEvent* event) override {
            if (event->type() == QEvent::User) {
                kept = LyrObjectPtr();
            }
            return QObject::event(event);
        }
    };
    ASSERT_TRUE(loader.load(COLORTABLE_MODULE)) << loader.message;
    auto* deleted = new Keeper;
    deleted->kept = newTable();
    deleted->deleteLater();
    Keeper told;
    told.kept = newTable();
    QCoreApplication::postEvent(&told, new QEvent(QEvent::User));
    EXPECT_TRUE(loader.unload()) << loader.message;
    EXPECT_FALSE(told.kept);
    expectGone(COLORTABLE, COLORTABLE_MODULE);
    QCoreApplication::processEvents();
}

TEST_F(LyrModuleLoaderTest, work_that_the_clean_up_leaves_in_the_queue_is_done_before_the_code_goes) {
    ASSERT_TRUE(loader.load(fixture("late_work"))) << loader.message;
    ASSERT_TRUE(loader.init("test_late_work"));
    EXPECT_EQ(LyrIdentifierRegistry::registrationCount("TestLateWorker"), 1);
    EXPECT_TRUE(loader.unload("test_late_work")) << loader.message;
    EXPECT_EQ(LyrIdentifierRegistry::registrationCount("TestLateEvent"), 2);
    expectGone("test_late_work", fixture("late_work"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

TEST_F(LyrModuleLoaderTest, guards_give_reasons_and_hear_of_an_unload) {
    struct Guard : LyrModuleLoader::UnloadGuard {
        std::string reason;
        int announced = 0;
        int gone = 0;
        LyrString reasonToStay(const char*) override {
            return reason.empty() ? LyrString() : LyrString::fromUtf8(reason.c_str());
        }
        void aboutToUnload(const char* module) override { announced += std::string(module) == "test_good" ? 1 : 0; }
        void moduleGoes(const char* module) override { gone += std::string(module) == "test_good" ? 1 : 0; }
    } guard;
    LyrModuleLoader::addUnloadGuard(&guard);
    ASSERT_TRUE(loader.load(fixture("good"))) << loader.message;
    guard.reason = "a view shows it";
    EXPECT_FALSE(loader.unload("test_good"));
    EXPECT_THAT(loader.message, HasSubstr("a view shows it"));
    EXPECT_EQ(guard.gone, 0);
    guard.reason.clear();
    EXPECT_TRUE(loader.unload("test_good")) << loader.message;
    EXPECT_EQ(guard.announced, 3) << "twice, before and after the clean-up, and once in vain";
    EXPECT_EQ(guard.gone, 1);
    LyrModuleLoader::removeUnloadGuard(&guard);
}

TEST_F(LyrModuleLoaderTest, an_unload_from_within_an_announced_unload_does_no_harm) {
    struct Hasty : LyrModuleLoader::UnloadGuard {
        LyrString reasonToStay(const char*) override { return {}; }
        void aboutToUnload(const char* module) override {
            if (!inside) {
                inside = true;
                LyrString message;
                EXPECT_TRUE(LyrModuleLoader::unload(module, message)) << message.utf8();
            }
        }
        bool inside = false;
    } hasty;
    LyrModuleLoader::addUnloadGuard(&hasty);
    ASSERT_TRUE(loader.load(fixture("good"))) << loader.message;
    EXPECT_TRUE(loader.unload("test_good")) << loader.message;
    LyrModuleLoader::removeUnloadGuard(&hasty);
    expectGone("test_good", fixture("good"));
}

using LyrModuleLoaderDeathTest = LyrModuleLoaderTest;

TEST_F(LyrModuleLoaderDeathTest, a_process_that_ends_with_the_module_loaded_and_steps_in_its_history_ends_well) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto useAndEnd = [] {
        // The history is older than the module, so it is also destroyed later.
        LyqApplication::instance();
        Loader calls;
        calls.load(COLORTABLE_MODULE);
        calls.init();
        {
            const LyrObjectRefPtr table = newTable();
            const LyqApplication::UserActionScope action(QStringLiteral("Change"));
            setParameters(table, 0.0f, 1.0f, 0.1f);
            table->runAction(id("CreateStepped"));
        }
        std::exit(LyqApplication::instance().undoStack().count() == 1 ? 7 : 8);
    };
    EXPECT_EXIT(useAndEnd(), testing::ExitedWithCode(7), "");
}
