#include "OpenWorkbench.h"

#include <lyr_core/LyrModuleLoader.h>
#include <lys_core/LyqExtensionRegistry.h>
#include <workbench/PluginHost.h>

#include <QFile>
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
