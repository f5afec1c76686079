#include <lyr_core/LyrFileSaver.h>

#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <functional>

namespace {

using Names = std::set<std::string>;

unsigned int modeOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

bool replace(const std::string& path, const std::string& content) {
    return LyrFileSaver::replace(path, content);
}

/** The message of a save that must fail. */
std::string refusal(const std::string& path, const std::string& content = "new") {
    LyrString message;
    EXPECT_FALSE(LyrFileSaver::replace(path, content, &message));
    return message.utf8();
}

/** Runs checks in another process; gives what they return, -1 if it did not end by itself. */
int inAnotherProcess(const std::function<int()>& checks) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(checks());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/** Gives up the rights of the superuser, who may write everywhere. */
void becomeOrdinaryUser() {
    if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) {
        ::_exit(99);
    }
}

}  // namespace

TEST(LyrFileSaver, makes_a_new_file_with_the_permissions_of_the_mask) {
    const TemporaryFolder folder;
    const mode_t before = ::umask(027);
    EXPECT_TRUE(replace(folder.file("a"), "text"));
    ::umask(before);
    EXPECT_EQ(folder.read("a"), "text");
    EXPECT_EQ(modeOf(folder.file("a")), 0640u);
    EXPECT_EQ(folder.names(), Names{"a"});
}

TEST(LyrFileSaver, replaces_a_file_and_keeps_its_permissions) {
    const TemporaryFolder folder;
    folder.write("a", "a longer text than the new one");
    ::chmod(folder.file("a").c_str(), 0624);
    EXPECT_TRUE(replace(folder.file("a"), "new"));
    EXPECT_EQ(folder.read("a"), "new");
    EXPECT_EQ(modeOf(folder.file("a")), 0624u);
    EXPECT_EQ(folder.names(), Names{"a"});
}

TEST(LyrFileSaver, writes_an_empty_file_and_one_of_many_megabytes_with_zero_bytes) {
    const TemporaryFolder folder;
    EXPECT_TRUE(replace(folder.file("a"), ""));
    EXPECT_EQ(folder.read("a"), "");
    std::string large(5000001, '\0');
    for (std::size_t i = 0; i < large.size(); ++i) {
        large[i] = static_cast<char>(i * 31);
    }
    EXPECT_TRUE(replace(folder.file("a"), large));
    EXPECT_TRUE(folder.read("a") == large);
}

TEST(LyrFileSaver, keeps_a_symbolic_link_and_replaces_what_it_leads_to) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.file("sub"));
    folder.write("sub/target", "old");
    std::filesystem::create_symlink("sub/target", folder.file("first"));
    std::filesystem::create_symlink(folder.file("first"), folder.file("second"));
    EXPECT_TRUE(replace(folder.file("second"), "new"));
    EXPECT_EQ(folder.read("sub/target"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("first")));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("second")));
    EXPECT_EQ(folder.names(), (Names{"first", "second", "sub"}));
}

TEST(LyrFileSaver, makes_the_file_that_a_dangling_link_leads_to_and_refuses_a_ring_of_links) {
    const TemporaryFolder folder;
    std::filesystem::create_symlink("later", folder.file("link"));
    EXPECT_TRUE(replace(folder.file("link"), "new"));
    EXPECT_EQ(folder.read("later"), "new");
    std::filesystem::create_symlink("ring", folder.file("ring"));
    EXPECT_EQ(refusal(folder.file("ring")),
              folder.file("ring") + ": not saved: the path cannot be followed: Too many levels of symbolic links");
}

TEST(LyrFileSaver, saves_by_a_relative_path_without_a_folder_in_it) {
    const TemporaryFolder folder;
    EXPECT_EQ(inAnotherProcess([&] {
                  return ::chdir(folder.path().c_str()) == 0 && replace("a", "one") && replace("./a", "two") ? 0 : 1;
              }),
              0);
    EXPECT_EQ(folder.read("a"), "two");
}

TEST(LyrFileSaver, follows_a_link_in_the_working_directory) {
    const TemporaryFolder folder;
    std::filesystem::create_symlink("a", folder.file("link"));
    EXPECT_EQ(inAnotherProcess([&] { return ::chdir(folder.path().c_str()) == 0 && replace("link", "one") ? 0 : 1; }),
              0);
    EXPECT_EQ(folder.read("a"), "one");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("link")));
}

TEST(LyrFileSaver, keeps_owner_and_group_of_the_file_where_it_may) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root may give files away";
    }
    const TemporaryFolder folder;
    const std::pair<uid_t, gid_t> owners[] = {{65534, 65534}, {0, 65534}};
    for (const auto& [user, group] : owners) {
        folder.write("a", "old");
        ASSERT_EQ(::chown(folder.file("a").c_str(), user, group), 0);
        EXPECT_TRUE(replace(folder.file("a"), "new"));
        struct stat status {};
        ASSERT_EQ(::stat(folder.file("a").c_str(), &status), 0);
        EXPECT_EQ(status.st_uid, user);
        EXPECT_EQ(status.st_gid, group);
        EXPECT_EQ(folder.read("a"), "new");
    }
}

TEST(LyrFileSaver, refuses_what_is_no_ordinary_file_and_paths_that_name_none) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.file("sub"));
    ::mkfifo(folder.file("pipe").c_str(), 0600);
    EXPECT_EQ(refusal(folder.file("sub")), folder.file("sub") + ": not saved: this is a folder, not a file");
    EXPECT_EQ(refusal(folder.file("pipe")), folder.file("pipe") + ": not saved: this is no ordinary file");
    EXPECT_EQ(refusal("/dev/full"), "/dev/full: not saved: this is no ordinary file");
    EXPECT_EQ(refusal(""), ": not saved: the path names no file");
    EXPECT_EQ(refusal(folder.file("")), folder.file("") + ": not saved: the path names no file");
    EXPECT_EQ(refusal(folder.file(".")), folder.file(".") + ": not saved: the path names no file");
    EXPECT_EQ(refusal(folder.file("..")), folder.file("..") + ": not saved: the path names no file");
    EXPECT_FALSE(LyrFileSaver::replace(folder.file("sub"), "content", nullptr));
    EXPECT_EQ(refusal(folder.file("none/a")),
              folder.file("none/a") +
                  ": not saved: the folder cannot be opened: No such file or directory; "
                  "check the path");
    EXPECT_EQ(refusal(folder.file(std::string("a\0b", 3))),
              folder.file("a") + ": not saved: the path holds the character 0");
    EXPECT_NE(refusal(folder.file(std::string(300, 'x'))).find("File name too long"), std::string::npos);
    EXPECT_EQ(folder.names(), (Names{"sub", "pipe"}));
}

TEST(LyrFileSaver, saves_under_the_longest_name_that_there_can_be) {
    const TemporaryFolder folder;
    const std::string name(255, 'x');
    EXPECT_TRUE(replace(folder.file(name), "one"));
    EXPECT_TRUE(replace(folder.file(name), "two"));
    EXPECT_EQ(folder.read(name), "two");
}

TEST(LyrFileSaver, refuses_a_read_only_folder_and_a_read_only_file) {
    const TemporaryFolder folder;
    ::chmod(folder.path().c_str(), 0755);
    std::filesystem::create_directory(folder.file("shut"));
    folder.write("shut/a", "old");
    ::chmod(folder.file("shut/a").c_str(), 0666);
    std::filesystem::create_directory(folder.file("open"));
    ::chmod(folder.file("open").c_str(), 0777);
    folder.write("open/a", "old");
    ::chmod(folder.file("open/a").c_str(), 0444);
    const auto checks = [&] {
        becomeOrdinaryUser();
        const bool shut =
            refusal(folder.file("shut/a")).find("no file can be made in the folder: Permission denied; choose") !=
            std::string::npos;
        const bool open =
            refusal(folder.file("open/a")).find("the present file may not be written: Permission denied; choose") !=
            std::string::npos;
        return shut && open ? 0 : 1;
    };
    ::chmod(folder.file("shut").c_str(), 0555);
    EXPECT_EQ(inAnotherProcess(checks), 0);
    ::chmod(folder.file("shut").c_str(), 0755);
    EXPECT_EQ(folder.read("shut/a"), "old");
    EXPECT_EQ(folder.read("open/a"), "old");
    EXPECT_EQ(folder.names(), (Names{"open", "shut"}));
}

TEST(LyrFileSaver, leaves_the_old_file_where_there_is_no_room_for_the_new_one) {
    const TemporaryFolder folder;
    folder.write("a", "old");
    const auto checks = [&] {
        const rlimit most{100000, 100000};
        ::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &most);
        const bool refused =
            refusal(folder.file("a"), std::string(200000, 'x')).find("File too large; make room") != std::string::npos;
        return refused && folder.read("a") == "old" && folder.names() == Names{"a"} ? 0 : 1;
    };
    EXPECT_EQ(inAnotherProcess(checks), 0);
}

TEST(LyrFileSaver, sweeps_leftovers_of_the_dead_and_nothing_else) {
    const TemporaryFolder folder;
    const Names kept{"a",
                     ".lyr-save-1-2.tmp~",
                     "lyr-save-1-2.tmp",
                     ".lyr-save-.tmp",
                     ".lyr-save-1.tmp",
                     ".lyr-save-1-.tmp",
                     ".lyr-save--1.tmp",
                     ".lyr-save-1-2-3.tmp",
                     ".lyr-save-1-x.tmp",
                     ".lyr-save-.lyr-save-1-2.tmp"};
    for (const std::string& name : kept) {
        folder.write(name, name);
    }
    // Whether a process with the number in the name lives plays no part: numbers come back, locks do not.
    folder.write(".lyr-save-" + std::to_string(::getpid()) + "-77.tmp", "own number, of an earlier process");
    folder.write(".lyr-save-1-2.tmp", "number of a living process");
    folder.write(".lyr-save-999999999-0.tmp", "number of none");
    EXPECT_EQ(LyrFileSaver::sweepLeftovers(folder.path()), 3);
    EXPECT_EQ(folder.names(), kept);
    EXPECT_EQ(folder.read("a"), "a");
    EXPECT_EQ(LyrFileSaver::sweepLeftovers(folder.file("none")), 0);
}

TEST(LyrFileSaver, sweeps_beside_the_file_that_a_path_leads_to) {
    const TemporaryFolder folder;
    const TemporaryFolder target;
    std::filesystem::create_symlink(target.file("a"), folder.file("link"));
    for (const TemporaryFolder* one : {&folder, &target}) {
        one->write(".lyr-save-1-2.tmp", "debris");
    }
    EXPECT_EQ(LyrFileSaver::sweepBeside(folder.file("link")), 1);
    EXPECT_EQ(folder.names(), (Names{".lyr-save-1-2.tmp", "link"}));
    EXPECT_EQ(target.names(), Names{});
    EXPECT_EQ(LyrFileSaver::sweepBeside(folder.file("new")), 1);
    EXPECT_EQ(LyrFileSaver::sweepBeside(folder.file("none/new")), 0);
    std::filesystem::create_symlink("ring", target.file("ring"));
    EXPECT_EQ(LyrFileSaver::sweepBeside(target.file("ring")), 0);
    EXPECT_EQ(folder.names(), Names{"link"});
}

TEST(LyrFileSaver, does_not_sweep_what_is_locked_nor_what_is_no_file) {
    const TemporaryFolder folder;
    folder.write("a", "content");
    folder.write(".lyr-save-1-1.tmp", "in use");
    std::filesystem::create_symlink("a", folder.file(".lyr-save-1-2.tmp"));
    std::filesystem::create_directory(folder.file(".lyr-save-1-3.tmp"));
    ::mkfifo(folder.file(".lyr-save-1-4.tmp").c_str(), 0600);
    const int user = ::open(folder.file(".lyr-save-1-1.tmp").c_str(), O_RDONLY);
    ASSERT_EQ(::flock(user, LOCK_SH), 0);
    const Names all = folder.names();
    EXPECT_EQ(LyrFileSaver::sweepLeftovers(folder.path()), 0);
    EXPECT_EQ(folder.names(), all);
    ::close(user);
    EXPECT_EQ(LyrFileSaver::sweepLeftovers(folder.path()), 1);
    EXPECT_EQ(folder.read("a"), "content");
}

TEST(LyrFileSaver, a_leftover_that_shares_its_content_with_the_file_is_swept_alone) {
    const TemporaryFolder folder;
    folder.write("a", "content");
    std::filesystem::create_hard_link(folder.file("a"), folder.file(".lyr-save-1-1.tmp"));
    EXPECT_EQ(LyrFileSaver::sweepLeftovers(folder.path()), 1);
    EXPECT_EQ(folder.read("a"), "content");
}

TEST(LyrFileSaver, many_processes_save_and_sweep_at_once_and_lose_nothing) {
    const TemporaryFolder folder;
    constexpr int processes = 8;
    constexpr int saves = 100;
    pid_t children[processes + 1];
    for (int p = 0; p < processes; ++p) {
        children[p] = ::fork();
        if (children[p] == 0) {
            bool done = true;
            for (int i = 0; i < saves; ++i) {
                const std::string content(static_cast<std::size_t>(100 + p), static_cast<char>('a' + p));
                done = replace(folder.file("own" + std::to_string(p) + '_' + std::to_string(i)), content) && done;
                done = replace(folder.file("shared"), content) && done;
                const std::string shared = folder.read("shared");
                // Whoever wrote it last: it is whole.
                done = shared == std::string(shared.size(), shared[0]) &&
                       shared.size() == std::size_t(100 + shared[0] - 'a') && done;
            }
            ::_exit(done ? 0 : 1);
        }
    }
    children[processes] = ::fork();
    if (children[processes] == 0) {
        for (;;) {
            LyrFileSaver::sweepLeftovers(folder.path());
        }
    }
    for (int p = 0; p < processes; ++p) {
        int status = 0;
        ::waitpid(children[p], &status, 0);
        EXPECT_EQ(status, 0) << "process " << p;
    }
    ::kill(children[processes], SIGKILL);
    ::waitpid(children[processes], nullptr, 0);
    EXPECT_EQ(folder.names().size(), std::size_t(processes * saves + 1));
    EXPECT_EQ(folder.read("own7_99"), std::string(107, 'h'));
}
