#include <EveryProperty.h>
#include <StoredClasses.h>
#include <lys_core/LyqSceneWidget.h>
#include <lys_core/LyqSliceWidget.h>
#include <workbench/LyrGreyLayer.h>

#include "BlockVolume.h"

#include <lyr_volume/LyrVolumeObject.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>

INSTANTIATE_TEST_SUITE_P(HostClass, EveryProperty, testing::ValuesIn(storedclasses::HOST), nameOfClass);
INSTANTIATE_TEST_SUITE_P(ClassWithout, EveryProperty, testing::ValuesIn(storedclasses::WITHOUT_PROPERTIES),
                         nameOfClass);
INSTANTIATE_TEST_SUITE_P(Class, EveryProperty, testing::ValuesIn(storedclasses::ANALYSIS), nameOfClass);

namespace {

/** A meta class as the sources make it. */
struct Declared {
    std::string name;  ///< empty where it is no literal
    std::string where;
    bool hasFactory;
};

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

void findIn(const std::filesystem::path& path, std::vector<Declared>& found) {
    static const std::regex declaration(R"re(\bLyrMetaClass\s+\w+\(\s*(?:"([^"]*)")?([^;]*);)re");
    const std::string text = contentOf(path);
    if (text.find("LyrMetaClass ") == std::string::npos) {
        return;
    }
    for (std::sregex_iterator at(text.begin(), text.end(), declaration); at != std::sregex_iterator(); ++at) {
        found.push_back({(*at)[1], path.string(), (*at)[2].str().find("new ") != std::string::npos});
    }
}

/** All meta classes of everything that is built for users. */
const std::vector<Declared>& declaredClasses() {
    static const std::vector<Declared> all = [] {
        std::vector<Declared> found;
        for (const char* folder : {"host", "colortable", "analysis", "workbench", "cli", "toolkit", "examples"}) {
            for (const auto& entry :
                 std::filesystem::recursive_directory_iterator(std::filesystem::path(LYS_SOURCES) / folder)) {
                if (entry.path().extension() == ".cpp" || entry.path().extension() == ".h") {
                    findIn(entry.path(), found);
                }
            }
        }
        return found;
    }();
    return all;
}

/** Where the reader of object files would make an object of this class. */
bool mayBeInFiles(const LyrMetaClass& meta) {
    return meta.isStorable() && !meta.isSingleton() && meta.isOfType("LyrObject");
}

std::multiset<std::string> listedClasses() {
    using namespace storedclasses;
    std::multiset<std::string> all(std::begin(HOST), std::end(HOST));
    all.insert(std::begin(COLORTABLE), std::end(COLORTABLE));
    all.insert(std::begin(ANALYSIS), std::end(ANALYSIS));
    all.insert(std::begin(WITHOUT_PROPERTIES), std::end(WITHOUT_PROPERTIES));
    return all;
}

/** Classes that are made by name, but not before somebody asks for them; no file may hold them. */
void bringUpTheRest() {
    LyqSliceWidget::metaClass();
    LyqSceneWidget::metaClass();
    const LyrObjectPtr document(new LyrVolumeObject(hollowBlock(), "block", "block"));
    // A layer brings up the plug-in that draws it.
    const LyrObjectPtr layer(new LyrGreyLayer(static_cast<LyrVolumeObject*>(document.get())));
}

}  // namespace

TEST(EveryClass, that_object_files_may_hold_is_among_those_whose_properties_are_tested) {
    // Before anything else is asked for: what files may hold is known from the start.
    std::multiset<std::string> stored;
    for (const Declared& declared : declaredClasses()) {
        const LyrMetaClass* meta = LyrMetaClass::find(declared.name.c_str());
        if (meta && mayBeInFiles(*meta)) {
            stored.insert(declared.name);
        }
    }
    EXPECT_EQ(stored, listedClasses()) << "tests/StoredClasses.h has to name each class that files may hold, once";
}

TEST(EveryClass, that_is_made_by_name_is_known_and_later_ones_are_in_no_file) {
    std::set<std::string> early;
    for (const Declared& declared : declaredClasses()) {
        if (LyrMetaClass::find(declared.name.c_str())) {
            early.insert(declared.name);
        }
    }
    bringUpTheRest();
    for (const Declared& declared : declaredClasses()) {
        const LyrMetaClass* meta = LyrMetaClass::find(declared.name.c_str());
        if (!declared.name.empty() && declared.hasFactory) {
            EXPECT_TRUE(meta) << declared.name << " of " << declared.where << " is not known in this program";
            EXPECT_TRUE(!meta || early.contains(declared.name) || !mayBeInFiles(*meta))
                << declared.name << " may be in files, but is not known when its library is loaded";
        }
    }
}

TEST(EveryClass, that_a_module_has_is_found_in_the_sources) {
    bringUpTheRest();
    std::set<std::string> names{"LyrObjectHardLinkOP",     "LyrObjectSoftLinkOP",     "LyrObjectParentLinkOP",
                                "LyrObjectHardLinkListOP", "LyrObjectSoftLinkListOP", "LyrObjectParentLinkListOP"};
    int unnamed = 0;
    for (const Declared& declared : declaredClasses()) {
        names.insert(declared.name);
        unnamed += declared.name.empty() ? 1 : 0;
    }
    EXPECT_EQ(unnamed, 1) << "beside the template of the six links, whose names stand above";
    std::map<std::string, int> modules{{"lyr_core", 0},       {"lyr_volume", 0},   {"lyr_opengl", 0}, {"lys_core", 0},
                                       {"lys_colortable", 0}, {"lys_analysis", 0}, {"workbench", 0}};
    for (const std::string& name : names) {
        if (const LyrMetaClass* meta = LyrMetaClass::find(name.c_str())) {
            ++modules[meta->getModule()];
        }
    }
    for (const auto& [module, count] : modules) {
        EXPECT_GT(count, 0) << module;
        EXPECT_EQ(LyrMetaClass::moduleClassCount(module.c_str()), count)
            << module << " registers a class that no source names";
    }
}

TEST(EveryClass, that_is_said_to_have_no_properties_has_none) {
    for (const char* name : storedclasses::WITHOUT_PROPERTIES) {
        const LyrObjectRefPtr object(name, Lyr::DocumentScope);
        ASSERT_TRUE(object) << name;
        EXPECT_EQ(object.get()->getPropertyCount(), 0) << name;
    }
}
