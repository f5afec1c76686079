#include "OpenWorkbench.h"
#include "RunProgram.h"

#include <lyr_core/LyrModuleLoader.h>
#include <lys_core/LyqExtensionRegistry.h>
#include <workbench/PluginHost.h>

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

namespace {

QString write(const QTemporaryDir& folder, const QString& name, const QByteArray& content) {
    QFile file(folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    return folder.filePath(name);
}

bool isMapped(const QByteArray& name) {
    QFile maps("/proc/self/maps");
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains(name);
}

/** Pixels in which two pictures of one size differ. */
int differences(const QImage& a, const QImage& b) {
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            count += a.pixel(x, y) != b.pixel(x, y) ? 1 : 0;
        }
    }
    return count;
}

}  // namespace

TEST(PluginHost, a_module_that_another_one_names_comes_first) {
    const QTemporaryDir folder;
    const QString a = write(folder, "liba.so", QByteArray("\0libc.so\0libb.so\0", 17));
    const QString b = write(folder, "libb.so", QByteArray("\0libb.so\0nothing", 17));
    const QString c = write(folder, "libc.so", QByteArray("\0libb.so\0", 9));
    EXPECT_EQ(workbench::dependencyOrder({a, b, c}), QStringList({b, c, a}));
    EXPECT_EQ(workbench::dependencyOrder({c, b, a}), QStringList({b, c, a}));
}

TEST(PluginHost, modules_in_a_ring_come_by_name) {
    const QTemporaryDir folder;
    const QString a = write(folder, "liba.so", QByteArray("\0libb.so\0", 9));
    const QString b = write(folder, "libb.so", QByteArray("\0liba.so\0", 9));
    EXPECT_EQ(workbench::dependencyOrder({b, a}), QStringList({a, b}));
}

TEST(PluginHost, a_file_that_is_no_module_is_a_message_and_the_others_load) {
    const QTemporaryDir folder;
    write(folder, "libbroken.so", "this is no library");
    workbench::PluginHost host(folder.path());
    const QStringList problems = host.loadAll();
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(problems[0].contains("libbroken.so"));
    EXPECT_TRUE(host.modules().empty());
    EXPECT_EQ(host.unloadAll(), QStringList());
}

TEST(PluginHost, a_folder_that_is_not_there_has_no_modules) {
    workbench::PluginHost host("/there/is/no/folder");
    EXPECT_EQ(host.loadAll(), QStringList());
    EXPECT_TRUE(host.modules().empty());
}

TEST(PluginHost, loads_the_folder_that_the_user_names_after_its_own_and_takes_both_back) {
    const ApplicationWithOpenGL application;
    workbench::PluginHost host(LYS_MODULES, EXAMPLE_MODULES);
    EXPECT_EQ(host.loadAll(), QStringList());
    EXPECT_EQ(host.modules(), (std::vector<std::string>{"lys_colortable", "example_handler", "lys_analysis"}));
    EXPECT_FALSE(host.hasFurtherProblem());
    EXPECT_EQ(host.unloadAll(), QStringList());
    EXPECT_FALSE(isMapped("libexample_handler.so"));
}

TEST(PluginHost, the_same_folder_named_again_is_loaded_once) {
    const ApplicationWithOpenGL application;
    workbench::PluginHost host(LYS_MODULES, QString(LYS_MODULES) + "/../lys");
    EXPECT_EQ(host.loadAll(), QStringList());
    EXPECT_EQ(host.modules().size(), 2u);
    EXPECT_EQ(host.unloadAll(), QStringList());
}

TEST(PluginHost, a_folder_that_the_user_names_must_be_there_and_hold_plug_ins) {
    const QTemporaryDir folder;
    const QString file = write(folder, "plain.txt", "text");
    for (const QString& wrong : {QString("/there/is/no/folder"), file, folder.path()}) {
        workbench::PluginHost host("/nothing/here", wrong);
        const QStringList problems = host.loadAll();
        ASSERT_EQ(problems.size(), 1) << wrong.toStdString();
        EXPECT_TRUE(problems[0].contains(wrong)) << problems[0].toStdString();
        EXPECT_TRUE(problems[0].contains("--plug-ins")) << problems[0].toStdString();
        EXPECT_TRUE(host.hasFurtherProblem());
    }
}

TEST(PluginHost, the_program_shows_the_legend_of_a_plug_in_of_the_users_folder) {
    const QTemporaryDir folder;
    const QString plain = folder.filePath("plain.png");
    const QString further = folder.filePath("further.png");
    const QStringList arguments = {"builtin:casting@16", "--size", "900x700", "--screenshot"};
    ASSERT_EQ(runWorkbench(arguments + QStringList{plain}).status, 0);
    const EndedProgram ended = runWorkbench(arguments + QStringList{further, "--plug-ins", EXAMPLE_MODULES});
    EXPECT_EQ(ended.status, 0) << ended.errors.toStdString();
    EXPECT_FALSE(ended.errors.contains("workbench:")) << ended.errors.toStdString();
    // A bar and its labels in each of the four views.
    EXPECT_GT(differences(QImage(plain), QImage(further)), 4 * 500);
}

TEST(PluginHost, a_missing_folder_and_a_damaged_plug_in_are_a_message_and_status_2_of_a_run_without_users) {
    const QTemporaryDir folder;
    const QString picture = folder.filePath("window.png");
    const QStringList arguments = {"builtin:casting@16", "--screenshot", picture, "--plug-ins"};
    const EndedProgram missing = runWorkbench(arguments + QStringList{"/there/is/no/folder"});
    EXPECT_EQ(missing.status, 2);
    EXPECT_TRUE(missing.errors.contains("/there/is/no/folder")) << missing.errors.toStdString();
    QFile whole(QString(EXAMPLE_MODULES) + "/libexample_handler.so");
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QString cut = write(folder, "libexample_handler.so", whole.read(whole.size() / 2));
    const EndedProgram damaged = runWorkbench(arguments + QStringList{folder.path()});
    EXPECT_EQ(damaged.status, 2);
    EXPECT_TRUE(damaged.errors.contains(cut)) << damaged.errors.toStdString();
    EXPECT_TRUE(damaged.errors.contains("Build the plug-in anew")) << damaged.errors.toStdString();
    EXPECT_FALSE(QFile::exists(picture));
}

TEST_F(OpenWorkbench, the_plug_ins_leave_the_process_after_the_window_closed) {
    ASSERT_TRUE(open("builtin:casting@32"));
    EXPECT_TRUE(isMapped("liblys_analysis.so"));
    ASSERT_EQ(plugins.modules().size(), 2u);
    EXPECT_EQ(plugins.modules()[0], "lys_colortable");
    window->close();
    window.reset();
    EXPECT_EQ(plugins.unloadAll(), QStringList());
    EXPECT_TRUE(LyqExtensionRegistry::instance().extensions().empty());
    EXPECT_FALSE(isMapped("liblys_analysis.so"));
    EXPECT_FALSE(isMapped("liblys_colortable.so"));
}

TEST_F(OpenWorkbench, a_plug_in_stays_while_its_layers_are_shown) {
    ASSERT_TRUE(open("builtin:casting@32"));
    LyrString message;
    EXPECT_FALSE(LyrModuleLoader::unload("lys_analysis", message));
    EXPECT_TRUE(LyrModuleLoader::isLoaded("lys_analysis"));
    EXPECT_TRUE(QString::fromUtf8(message.utf8()).contains("LyrValueLayer"));
}

TEST_F(OpenWorkbench, plug_ins_may_go_and_come_back_while_the_window_is_open) {
    ASSERT_TRUE(open("builtin:casting@32"));
    settle();
    EXPECT_EQ(plugins.unloadAll(), QStringList());
    settle();
    EXPECT_FALSE(isMapped("liblys_analysis.so"));
    EXPECT_EQ(plugins.loadAll(), QStringList());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->isBusy(); }, 20000));
    settle();
}
