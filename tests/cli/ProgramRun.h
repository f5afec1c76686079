#pragma once

#include <map>
#include <string>
#include <vector>

/// One run of the program as a process of its own.
struct ProgramRun {
    int status = -1;      ///< exit status; 1000 + number for an end by a signal
    std::string out;      ///< standard output
    std::string error;    ///< standard error
    long peakMemory = 0;  ///< bytes that were in memory at most

    /// How a run is set up besides its arguments.
    struct Setup {
        std::string input;                               ///< standard input
        std::map<std::string, std::string> environment;  ///< variables to set
        std::string folder;                              ///< working directory, empty for this one
        int outputFile = -1;                             ///< a file that standard output goes to instead of `out`
        bool closedOutput = false;                       ///< run without a standard output
        bool deafReader = false;                         ///< standard output is a pipe that nobody reads
        long fileLimit = 0;                              ///< bytes of a file, 0 for no limit
        int signal = 0;  ///< sent once `signalFolder` has an entry; input stays open till then
        std::string signalFolder;
    };

    static ProgramRun of(const std::vector<std::string>& arguments, const Setup& setup);
    static ProgramRun of(const std::vector<std::string>& arguments) { return of(arguments, Setup()); }
};

/// A folder of its own for a test, removed with everything in it.
class TestFolder {
public:
    TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder();

    /// The path of a file in the folder.
    std::string operator/(const std::string& name) const { return mPath + '/' + name; }
    const std::string& path() const { return mPath; }
    /// Writes a file and returns its path.
    std::string write(const std::string& name, const std::string& bytes) const;
    /// The names of all that is in the folder, sorted.
    std::vector<std::string> names() const;

private:
    std::string mPath;
};

/// The bytes of a file; an empty text where there is none.
std::string readBytes(const std::string& path);

/// Floats as they lie in memory, and back.
std::string bytesOf(const std::vector<float>& values);
std::vector<float> floatsOf(const std::string& bytes);
