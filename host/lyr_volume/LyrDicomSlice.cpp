#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include <lyr_volume/LyrDicomSlice_p.h>
#include <lyr_volume/LyrHeaderText_p.h>
#include <lyr_volume/LyrInputFile_p.h>

namespace lyrvolume {
namespace {

constexpr std::uint32_t kUndefined = 0xFFFFFFFF;
constexpr int kDeepestNesting = 32;

constexpr std::uint32_t tag(std::uint32_t group, std::uint32_t element) {
    return group << 16U | element;
}

constexpr std::uint32_t kItem = tag(0xFFFE, 0xE000);
constexpr std::uint32_t kItemEnd = tag(0xFFFE, 0xE00D);
constexpr std::uint32_t kSequenceEnd = tag(0xFFFE, 0xE0DD);
constexpr std::uint32_t kPixelData = tag(0x7FE0, 0x0010);

/** Bytes of a file through a small window, so that tags need no call to the system each. */
class Window {
public:
    explicit Window(const InputFile& file) : file_(file) {}

    bool get(std::uint64_t place, std::span<unsigned char> out) {
        if (place > file_.length() || out.size() > file_.length() - place) {
            return false;
        }
        if (out.size() > bytes_.size()) {
            return file_.readAt(place, out) == out.size();
        }
        if (place < start_ || place + out.size() > start_ + count_) {
            start_ = place;
            count_ = file_.readAt(place, bytes_);
            if (count_ < out.size()) {
                return false;
            }
        }
        std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(place - start_), out.size(), out.begin());
        return true;
    }

    std::uint64_t length() const { return file_.length(); }

private:
    const InputFile& file_;
    std::array<unsigned char, 4096> bytes_{};
    std::uint64_t start_ = 0;
    std::size_t count_ = 0;
};

/** How the elements of a data set are written. */
struct Syntax {
    bool implicitTypes = false;
    bool bigEndian = false;
};

struct Element {
    std::uint32_t tag = 0;
    std::array<char, 2> type{};  ///< empty where types are implicit
    std::uint32_t length = 0;
    std::uint64_t place = 0;  ///< of the value
    std::uint64_t start = 0;  ///< of the tag

    bool is(const char* name) const { return type[0] == name[0] && type[1] == name[1]; }
};

class Scanner {
public:
    Scanner(const InputFile& file, DicomSlice& slice) : window_(file), slice_(slice) {}

    void scan() {
        std::uint64_t place = 132;
        if (!scanMeta(place)) {
            return;
        }
        const std::string& uid = slice_.transferSyntax;
        if (uid == "1.2.840.10008.1.2.1.99") {
            fail("is compressed as a whole (deflated), which is not supported; store it uncompressed");
            return;
        }
        syntax_ = {uid == "1.2.840.10008.1.2", uid == "1.2.840.10008.1.2.2"};
        while (place < window_.length()) {
            if (!scanElement(place)) {
                return;
            }
        }
        judge();
    }

private:
    bool fail(const std::string& reason) {
        if (slice_.problem.empty()) {
            slice_.problem = reason;
        }
        return false;
    }

    bool cut(std::uint64_t place) {
        return fail("at byte " + std::to_string(place) +
                    ": an element goes beyond the end of the file; the file is cut off, "
                    "fetch it again");
    }

    std::uint32_t decode(const unsigned char* raw, std::size_t bytes, bool bigEndian) const {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < bytes; ++i) {
            value = value << 8U | raw[bigEndian ? i : bytes - 1 - i];
        }
        return value;
    }

    static bool hasLongLength(const Element& element) {
        static constexpr std::array<const char*, 13> kTypes{"OB", "OW", "OF", "OD", "OL", "OV", "SQ",
                                                            "UC", "UR", "UT", "UN", "SV", "UV"};
        return std::any_of(kTypes.begin(), kTypes.end(), [&](const char* type) { return element.is(type); });
    }

    /** Tag, type and length at a place. */
    bool readHead(std::uint64_t place, const Syntax& syntax, Element& element) {
        std::array<unsigned char, 8> head{};
        if (!window_.get(place, head)) {
            return cut(place);
        }
        element.start = place;
        element.tag = tag(decode(head.data(), 2, syntax.bigEndian), decode(head.data() + 2, 2, syntax.bigEndian));
        element.place = place + 8;
        const bool delimiter = element.tag >> 16U == 0xFFFE;
        if (syntax.implicitTypes || delimiter) {
            element.type = {};
            element.length = decode(head.data() + 4, 4, syntax.bigEndian);
            return true;
        }
        element.type = {static_cast<char>(head[4]), static_cast<char>(head[5])};
        if (element.type[0] < 'A' || element.type[0] > 'Z' || element.type[1] < 'A' || element.type[1] > 'Z') {
            return fail("at byte " + std::to_string(place) + ": no DICOM element; the file is damaged");
        }
        element.length = decode(head.data() + 6, 2, syntax.bigEndian);
        if (hasLongLength(element)) {
            std::array<unsigned char, 4> length{};
            if (!window_.get(place + 8, length)) {
                return cut(place);
            }
            element.length = decode(length.data(), 4, syntax.bigEndian);
            element.place = place + 12;
        }
        return true;
    }

    bool isInside(const Element& element) const {
        return element.place <= window_.length() && element.length <= window_.length() - element.place;
    }

    /** The file meta information: always explicit and little-endian; ends where another group begins. */
    bool scanMeta(std::uint64_t& place) {
        for (;;) {
            std::array<unsigned char, 2> group{};
            if (!window_.get(place, group)) {
                return fail("ends before its data set; the file is cut off, fetch it again");
            }
            if (decode(group.data(), 2, false) != 2) {
                break;
            }
            Element element;
            if (!readHead(place, {}, element)) {
                return false;
            }
            if (!isInside(element)) {
                return cut(place);
            }
            if (element.tag == tag(2, 0x0010)) {
                slice_.transferSyntax = text(element);
            } else if (element.tag == tag(2, 0x0002)) {
                slice_.sopClass = text(element);
            }
            place = element.place + element.length;
        }
        return !slice_.transferSyntax.empty() || fail("does not say how its data set is written; the file is damaged");
    }

    bool scanElement(std::uint64_t& place) {
        Element element;
        if (!readHead(place, syntax_, element)) {
            return false;
        }
        if (element.tag == kPixelData) {
            slice_.hasPixels = true;
            return element.length == kUndefined ? scanFragments(element, place) : scanNative(element, place);
        }
        if (element.length == kUndefined) {
            place = element.place;
            // The content of an unknown type is written with implicit types (PS3.5, 6.2.2).
            return skipItems(place, element.is("UN") ? Syntax{true, false} : syntax_, 1);
        }
        if (!isInside(element)) {
            return cut(place);
        }
        take(element);
        place = element.place + element.length;
        return true;
    }

    /** Behind a sequence of undefined length whose first item is at `place`. */
    bool skipItems(std::uint64_t& place, const Syntax& syntax, int depth) {
        if (depth > kDeepestNesting) {
            return fail("its sequences are nested too deeply; the file is damaged");
        }
        for (;;) {
            Element item;
            if (!readHead(place, syntax, item)) {
                return false;
            }
            place = item.place;
            if (item.tag == kSequenceEnd) {
                return true;
            }
            if (item.tag != kItem) {
                return fail("at byte " + std::to_string(item.start) + ": no item of a sequence; the file is damaged");
            }
            if (item.length == kUndefined) {
                if (!skipItemContent(place, syntax, depth)) {
                    return false;
                }
            } else if (!isInside(item)) {
                return cut(item.start);
            } else {
                place = item.place + item.length;
            }
        }
    }

    bool skipItemContent(std::uint64_t& place, const Syntax& syntax, int depth) {
        for (;;) {
            Element element;
            if (!readHead(place, syntax, element)) {
                return false;
            }
            place = element.place;
            if (element.tag == kItemEnd) {
                return true;
            }
            if (element.length == kUndefined) {
                if (!skipItems(place, element.is("UN") ? Syntax{true, false} : syntax, depth + 1)) {
                    return false;
                }
            } else if (!isInside(element)) {
                return cut(element.start);
            } else {
                place = element.place + element.length;
            }
        }
    }

    bool scanNative(const Element& element, std::uint64_t& place) {
        if (!isInside(element)) {
            return fail("its pixel data claim " + std::to_string(element.length) + " bytes, " +
                        std::to_string(window_.length() - std::min(element.place, window_.length())) +
                        " are there; the file is cut off, fetch it again");
        }
        std::uint64_t needed = slice_.bits / 8;
        for (const std::uint64_t factor : {slice_.rows, slice_.columns, slice_.frames, slice_.samples}) {
            if (__builtin_mul_overflow(needed, factor, &needed)) {
                return fail("its size is impossible; the file is damaged");
            }
        }
        if (element.length < needed) {
            return fail("its pixel data hold " + std::to_string(element.length) + " bytes, " + std::to_string(needed) +
                        " are needed for its size; the file is damaged");
        }
        place = element.place + element.length;
        return true;
    }

    /** Compressed pixel data: a table of offsets, then fragments, then the end of the sequence. */
    bool scanFragments(const Element& element, std::uint64_t& place) {
        std::uint64_t fragments = 0;
        std::uint64_t bytes = 0;
        place = element.place;
        for (;;) {
            Element item;
            if (!readHead(place, syntax_, item)) {
                return false;
            }
            place = item.place;
            if (item.tag == kSequenceEnd) {
                break;
            }
            if (item.tag != kItem || !isInside(item)) {
                return cut(item.start);
            }
            if (fragments == 1 && !beginsAsStated(item)) {
                return fail("its compressed pixel data do not begin as its transfer syntax says; the file is damaged");
            }
            bytes += fragments++ > 0 ? item.length : 0;
            place = item.place + item.length;
        }
        if (fragments < slice_.frames + 1) {
            return fail("its pixel data hold " + std::to_string(fragments == 0 ? 0 : fragments - 1) +
                        " fragments for " + std::to_string(slice_.frames) + " frames; the file is damaged");
        }
        // The best codecs pack an empty image some thousand times; a claim far beyond that is no image.
        constexpr double kLargestRatio = 16384.0;
        const double claimed = static_cast<double>(slice_.rows) * static_cast<double>(slice_.columns) *
                               static_cast<double>(slice_.frames) * static_cast<double>(slice_.bits) / 8.0;
        if (claimed > kLargestRatio * static_cast<double>(bytes) + 65536.0) {
            return fail("its pixel data are far too short for its size; the file is damaged");
        }
        return true;
    }

    /** The JPEG families begin with a mark of their own; their codecs answer a wrong one on standard error only. */
    bool beginsAsStated(const Element& fragment) {
        const std::string& uid = slice_.transferSyntax;
        const std::string_view family = "1.2.840.10008.1.2.4.";
        std::array<unsigned char, 2> mark{};
        if (uid.compare(0, family.size(), family) != 0 || uid.size() < family.size() + 2) {
            return true;
        }
        if (fragment.length < mark.size() || !window_.get(fragment.place, mark)) {
            return false;
        }
        if (uid[family.size()] == '9') {  // JPEG 2000: a bare codestream, or one in boxes
            return (mark[0] == 0xFF && mark[1] == 0x4F) || (mark[0] == 0 && mark[1] == 0);
        }
        return uid[family.size()] > '8' || uid.size() > family.size() + 2 || (mark[0] == 0xFF && mark[1] == 0xD8);
    }

    std::string text(const Element& element) {
        std::string value(std::min<std::uint32_t>(element.length, 1024), '\0');
        if (!window_.get(element.place, {reinterpret_cast<unsigned char*>(value.data()), value.size()})) {
            return {};
        }
        const std::size_t end = value.find('\0');
        return std::string(trimmed(std::string_view(value).substr(0, end)));
    }

    std::uint64_t number(const Element& element) {
        std::array<unsigned char, 2> raw{};
        return element.length >= 2 && window_.get(element.place, raw) ? decode(raw.data(), 2, syntax_.bigEndian) : 0;
    }

    /** Decimal numbers between backslashes; nothing unless there are as many as asked for. */
    template <std::size_t N>
    std::optional<std::array<double, N>> numbers(const Element& element) {
        std::string value = text(element);
        std::replace(value.begin(), value.end(), '\\', ' ');
        const auto parsed = parseAll<double>(value);
        std::array<double, N> result{};
        if (!parsed || parsed->size() < N ||
            !std::all_of(parsed->begin(), parsed->end(), [](double v) { return std::isfinite(v); })) {
            return std::nullopt;
        }
        std::copy_n(parsed->begin(), N, result.begin());
        return result;
    }

    std::optional<double> oneNumber(const Element& element) {
        const auto values = numbers<1>(element);
        return values && (*values)[0] > 0.0 ? std::optional((*values)[0]) : std::nullopt;
    }

    void take(const Element& element) {
        switch (element.tag) {
            case tag(0x0008, 0x103E):
                slice_.description = text(element);
                break;
            case tag(0x0018, 0x0050):
                slice_.sliceThickness = oneNumber(element);
                break;
            case tag(0x0018, 0x0088):
                slice_.sliceSpacing = oneNumber(element);
                break;
            case tag(0x0020, 0x000E):
                slice_.series = text(element);
                break;
            case tag(0x0020, 0x0013):
                slice_.instance = parseAs<std::int64_t>(text(element));
                break;
            case tag(0x0020, 0x0032):
                slice_.position = numbers<3>(element);
                break;
            case tag(0x0020, 0x0037):
                slice_.orientation = numbers<6>(element);
                break;
            default:
                takePixelFacts(element);
        }
    }

    void takePixelFacts(const Element& element) {
        switch (element.tag) {
            case tag(0x0028, 0x0002):
                slice_.samples = number(element);
                break;
            case tag(0x0028, 0x0004):
                slice_.photometric = text(element);
                break;
            case tag(0x0028, 0x0008):
                slice_.frames = parseAs<std::uint64_t>(text(element)).value_or(0);
                break;
            case tag(0x0028, 0x0010):
                slice_.rows = number(element);
                break;
            case tag(0x0028, 0x0011):
                slice_.columns = number(element);
                break;
            case tag(0x0028, 0x0030):
                slice_.pixelSpacing = numbers<2>(element);
                break;
            case tag(0x0028, 0x0100):
                slice_.bits = number(element);
                break;
            default:
                break;
        }
    }

    /** Objects that have no image of their own: directories, reports, presentation states, plans, documents. */
    bool isOtherClass() const {
        static constexpr std::array<std::string_view, 7> kClasses{
            "1.2.840.10008.1.3.10",          "1.2.840.10008.5.1.4.1.1.88.",   "1.2.840.10008.5.1.4.1.1.11.",
            "1.2.840.10008.5.1.4.1.1.481.3", "1.2.840.10008.5.1.4.1.1.481.5", "1.2.840.10008.5.1.4.1.1.104.",
            "1.2.840.10008.5.1.4.1.1.66"};
        return std::any_of(kClasses.begin(), kClasses.end(),
                           [this](std::string_view uid) { return slice_.sopClass.compare(0, uid.size(), uid) == 0; });
    }

    void judge() {
        if (!slice_.hasPixels) {
            slice_.noImage = isOtherClass();
            fail(slice_.noImage ? "holds no image (it is a report, a plan or a directory)"
                                : "ends before its pixel data; the file is cut off, fetch it again");
        } else if (slice_.rows == 0 || slice_.columns == 0 || slice_.frames == 0) {
            fail("has a size of " + std::to_string(slice_.columns) + " × " + std::to_string(slice_.rows) + " × " +
                 std::to_string(slice_.frames) + ", which has no voxels; the file is damaged");
        } else if (slice_.samples != 1 || slice_.photometric.compare(0, 10, "MONOCHROME") != 0) {
            fail("is in colour (" + slice_.photometric + "); only grey images can be read, store them as grey values");
        } else if (slice_.bits != 8 && slice_.bits != 16 && slice_.bits != 32) {
            fail("has samples of " + std::to_string(slice_.bits) + " bits; store them as 8, 16 or 32 bits");
        }
    }

    Window window_;
    DicomSlice& slice_;
    Syntax syntax_;
};

}  // namespace

DicomSlice scanDicomFile(const std::string& path) {
    DicomSlice slice;
    slice.path = path;
    LyrVolumeReader::Report report;
    const LyrVolumeReader::Progress none;
    ReadContext context(report, none);
    InputFile file;
    if (!file.open(path, context)) {
        slice.problem = "cannot be opened; check its permissions";
        return slice;
    }
    std::array<unsigned char, 4> mark{};
    if (file.readAt(128, mark) != mark.size() ||
        std::string_view(reinterpret_cast<const char*>(mark.data()), 4) != "DICM") {
        slice.problem = "has no DICOM mark at byte 128; the file is cut off or of another format";
        return slice;
    }
    Scanner(file, slice).scan();
    return slice;
}

}  // namespace lyrvolume
