#include "ProgramRun.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

struct Pipe {
    int ends[2] = {-1, -1};
    Pipe() {
        if (pipe2(ends, O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
    }
    ~Pipe() {
        close(0);
        close(1);
    }
    void close(int end) {
        if (ends[end] >= 0)
            ::close(ends[end]);
        ends[end] = -1;
    }
};

void limit(__rlimit_resource resource, long bytes) {
    const rlimit both = {rlim_t(bytes), rlim_t(bytes)};
    if (bytes > 0 && setrlimit(resource, &both) != 0)
        _exit(125);
}

[[noreturn]] void becomeProgram(const std::vector<std::string>& arguments, const ProgramRun::Setup& setup,
                                const Pipe& in, const Pipe& out, const Pipe& error) {
    if (!setup.folder.empty() && chdir(setup.folder.c_str()) != 0)
        _exit(126);
    for (const auto& [name, value] : setup.environment)
        setenv(name.c_str(), value.c_str(), 1);
    limit(RLIMIT_FSIZE, setup.fileLimit);
    signal(SIGPIPE, SIG_DFL);
    dup2(in.ends[0], 0);
    dup2(setup.outputFile >= 0 ? setup.outputFile : out.ends[1], 1);
    dup2(error.ends[1], 2);
    if (setup.closedOutput)
        close(1);
    std::vector<char*> argv = {const_cast<char*>(COLORTABLE_PROGRAM)};
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    execv(argv[0], argv.data());
    _exit(127);
}

/// Waits until a folder has an entry, ten seconds at most.
void waitForEntry(const std::string& folder) {
    for (int i = 0; i < 1000 && std::filesystem::is_empty(folder); ++i)
        usleep(10000);
}

/// Feeds and drains the pipes until the program has closed its ends.
void serve(Pipe& in, Pipe& out, Pipe& error, const std::string& input, ProgramRun& run) {
    std::size_t fed = 0;
    if (input.empty())
        in.close(1);
    while (out.ends[0] >= 0 || error.ends[0] >= 0) {
        pollfd polled[3] = {{in.ends[1], POLLOUT, 0}, {out.ends[0], POLLIN, 0}, {error.ends[0], POLLIN, 0}};
        poll(polled, 3, -1);
        if (polled[0].revents != 0) {
            const ssize_t count =
                write(in.ends[1], input.data() + fed, std::min<std::size_t>(input.size() - fed, 4096));
            fed += count > 0 ? std::size_t(count) : 0;
            if (count < 0 || fed == input.size())
                in.close(1);
        }
        for (const int which : {1, 2}) {
            if (polled[which].revents == 0)
                continue;
            char buffer[65536];
            Pipe& from = which == 1 ? out : error;
            const ssize_t count = read(from.ends[0], buffer, sizeof buffer);
            if (count > 0)
                (which == 1 ? run.out : run.error).append(buffer, std::size_t(count));
            else
                from.close(0);
        }
    }
}

}  // namespace

ProgramRun ProgramRun::of(const std::vector<std::string>& arguments, const Setup& setup) {
    signal(SIGPIPE, SIG_IGN);
    Pipe in, out, error;
    const pid_t child = fork();
    if (child == 0)
        becomeProgram(arguments, setup, in, out, error);
    in.close(0);
    out.close(1);
    error.close(1);
    if (setup.deafReader)
        out.close(0);
    ProgramRun run;
    if (setup.signal != 0) {
        waitForEntry(setup.signalFolder);
        kill(child, setup.signal);
    }
    serve(in, out, error, setup.input, run);
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);
    run.peakMemory = usage.ru_maxrss * 1024;
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
    return run;
}

TestFolder::TestFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "test_cli-XXXXXX").string();
    if (!mkdtemp(name.data()))
        throw std::runtime_error("no temporary folder");
    mPath = name;
}

TestFolder::~TestFolder() {
    std::error_code error;
    std::filesystem::remove_all(mPath, error);
}

std::string TestFolder::write(const std::string& name, const std::string& bytes) const {
    const std::string path = *this / name;
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

std::vector<std::string> TestFolder::names() const {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(mPath))
        found.push_back(entry.path().filename().string());
    std::sort(found.begin(), found.end());
    return found;
}

std::string readBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string bytesOf(const std::vector<float>& values) {
    return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(float)};
}

std::vector<float> floatsOf(const std::string& bytes) {
    std::vector<float> values(bytes.size() / sizeof(float));
    std::memcpy(values.data(), bytes.data(), values.size() * sizeof(float));
    return values;
}
