#pragma once

#include "Descriptor.h"
#include "WorkFolder.h"

#include <sys/types.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace lys::cli {

/** The bytes of one output. Nothing is seen of them until commit(): they wait in a hidden folder beside the target, or,
 * for standard output, devices and pipes, in a nameless file, so that any amount takes no memory. What was not
 * committed leaves no trace; what a process that was killed has left goes when the next one opens an output in the same
 * folder.
 *
 *  Every operation throws Failure (Failed) with the target and the reason. */
class Output {
public:
    /** Opens an output; "-" is standard output. A symbolic link is followed. */
    explicit Output(const std::string& path);
    Output(Output&& other) noexcept;
    Output& operator=(Output&&) = delete;
    ~Output();

    void write(std::span<const std::byte> bytes);
    /** Ends the writing; commit() does so too. An output of many keeps no file open after it. */
    void finish();

    /** Shows outputs: all of them, or, where the system can exchange files, none. */
    static void commit(std::span<Output> outputs);
    void commit() { commit(std::span(this, 1)); }

private:
    enum class Kind { File, Stream };
    enum class Place { Temporary, Created, Exchanged, Replaced };

    void openBeside();
    void openNameless();
    void place();
    void takeBack() noexcept;
    void removeTemporary() noexcept;
    void pourOut();
    [[noreturn]] void failBecauseOfSystem() const;
    [[noreturn]] void fail(const std::string& reason) const;

    std::string mName;       // as the user gave it
    std::string mTarget;     // with links resolved
    std::string mTemporary;  // empty when there is none
    std::shared_ptr<WorkFolder> mWork;
    Descriptor mFile;
    Kind mKind = Kind::File;
    Place mPlace = Place::Temporary;
    mode_t mMode = 0;
    bool mExists = false;
};

/** Writes a text to standard output. Throws Failure (Failed) when it cannot be written whole. */
void printText(std::string_view text);

}  // namespace lys::cli
