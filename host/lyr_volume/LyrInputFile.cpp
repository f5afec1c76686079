#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <vector>

#include <lyr_volume/LyrInputFile_p.h>

namespace lyrvolume {

InputFile::~InputFile() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

bool InputFile::open(const std::string& path, ReadContext& context, const std::string& namedBy) {
    path_ = path;
    const std::string place = namedBy.empty() || namedBy == path ? path : path + " (named by " + namedBy + ")";
    // Without waiting: a pipe must not hold the reader up.
    descriptor_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor_ < 0) {
        return context.fail(place, "cannot be opened: " + std::generic_category().message(errno) +
                                       "; check the name and the permissions");
    }
    struct stat status {};
    if (fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) {
        return context.fail(place, "is no ordinary file; give a volume file, a folder of slices or builtin:casting");
    }
    length_ = static_cast<std::uint64_t>(status.st_size);
    return true;
}

std::size_t InputFile::readAt(std::uint64_t place, std::span<unsigned char> out) const {
    std::size_t done = 0;
    while (done < out.size() && place + done < length_) {
        const ssize_t count =
            pread(descriptor_, out.data() + done, out.size() - done, static_cast<off_t>(place + done));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        done += static_cast<std::size_t>(count);
    }
    return done;
}

namespace {

class PlainStream : public ByteStream {
public:
    PlainStream(const InputFile& file, std::uint64_t place) : file_(file), place_(place) {}

    std::optional<std::size_t> read(std::span<unsigned char> out) override {
        const std::size_t count = file_.readAt(place_, out);
        place_ += count;
        return count;
    }

    double consumed() const override {
        return file_.length() == 0 ? 1.0 : static_cast<double>(place_) / static_cast<double>(file_.length());
    }

private:
    const InputFile& file_;
    std::uint64_t place_;
};

class InflatedStream : public ByteStream {
public:
    InflatedStream(const InputFile& file, std::uint64_t place, std::uint64_t length, ReadContext& context)
        : file_(file), context_(context), place_(place) {
        end_ = length < file.length() - std::min(place, file.length()) ? place + length : file.length();
        stored_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kChunk, end_ - std::min(place, end_))));
        usable_ = inflateInit2(&state_, MAX_WBITS + 32) == Z_OK;  // 32: gzip or zlib, as the stream begins
    }

    ~InflatedStream() override {
        if (usable_) {
            inflateEnd(&state_);
        }
    }

    InflatedStream(const InflatedStream&) = delete;
    InflatedStream& operator=(const InflatedStream&) = delete;

    std::optional<std::size_t> read(std::span<unsigned char> out) override {
        if (!usable_) {
            return damaged("cannot be inflated: not enough memory");
        }
        state_.next_out = out.data();
        state_.avail_out = static_cast<uInt>(std::min<std::size_t>(out.size(), kChunk));
        const std::size_t asked = state_.avail_out;
        while (state_.avail_out > 0 && !ended_) {
            if (state_.avail_in == 0 && !refill()) {
                return damaged("the compressed data break off; the file is cut off, fetch it again");
            }
            const int result = inflate(&state_, Z_NO_FLUSH);
            if (result == Z_STREAM_END) {
                ended_ = !nextMember();
            } else if (result != Z_OK) {
                return damaged(std::string("the compressed data are damaged") +
                               (state_.msg != nullptr ? std::string(" (") + state_.msg + ")" : std::string()) +
                               "; fetch the file again");
            }
        }
        return asked - state_.avail_out;
    }

    double consumed() const override {
        return file_.length() == 0 ? 1.0 : static_cast<double>(place_) / static_cast<double>(file_.length());
    }

private:
    static constexpr std::size_t kChunk = std::size_t{1} << 18U;

    std::optional<std::size_t> damaged(const std::string& reason) {
        context_.fail(file_.path(), "at byte " + std::to_string(place_ - state_.avail_in) + ": " + reason);
        return std::nullopt;
    }

    bool refill() {
        const std::size_t wanted =
            static_cast<std::size_t>(std::min<std::uint64_t>(stored_.size(), end_ - std::min(place_, end_)));
        const std::size_t count = file_.readAt(place_, {stored_.data(), wanted});
        place_ += count;
        state_.next_in = stored_.data();
        state_.avail_in = static_cast<uInt>(count);
        return count > 0;
    }

    /** Behind the end of one gzip member another may follow; anything else there is left alone. */
    bool nextMember() {
        std::array<unsigned char, 2> start{};
        const std::uint64_t here = place_ - state_.avail_in;
        if (here >= end_ || file_.readAt(here, start) != start.size() || start[0] != 0x1F || start[1] != 0x8B) {
            return false;
        }
        return inflateReset(&state_) == Z_OK;
    }

    const InputFile& file_;
    ReadContext& context_;
    std::vector<unsigned char> stored_;
    z_stream state_{};
    std::uint64_t place_;
    std::uint64_t end_ = 0;
    bool usable_ = false;
    bool ended_ = false;
};

}  // namespace

std::unique_ptr<ByteStream> plainStream(const InputFile& file, std::uint64_t place) {
    return std::make_unique<PlainStream>(file, place);
}

std::unique_ptr<ByteStream> inflatedStream(const InputFile& file, std::uint64_t place, std::uint64_t length,
                                           ReadContext& context) {
    return std::make_unique<InflatedStream>(file, place, length, context);
}

}  // namespace lyrvolume
