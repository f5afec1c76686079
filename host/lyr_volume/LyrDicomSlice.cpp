#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include <lyr_volume/LyrDicomScanner_p.h>
#include <lyr_volume/LyrDicomSlice_p.h>
#include <lyr_volume/LyrHeaderText_p.h>
#include <lyr_volume/LyrInputFile_p.h>

namespace lyrvolume {
namespace {

constexpr int kDeepestNesting = 32;
constexpr std::uint32_t kPixelData = dicomTag(0x7FE0, 0x0010);

/** Sequences that hold the geometry and the scaling of files with many frames. */
bool isFunctionalGroup(std::uint32_t tag) {
    static constexpr std::array<std::uint32_t, 6> kTags{dicomTag(0x5200, 0x9229), dicomTag(0x5200, 0x9230),
                                                        dicomTag(0x0028, 0x9110), dicomTag(0x0028, 0x9145),
                                                        dicomTag(0x0020, 0x9113), dicomTag(0x0020, 0x9116)};
    return std::find(kTags.begin(), kTags.end(), tag) != kTags.end();
}

class Scanner {
public:
    Scanner(const InputFile& file, DicomSlice& slice) : cursor_(file), slice_(slice), pixels_(slice.pixels) {}

    void scan() {
        std::uint64_t place = 132;
        if (!scanMeta(place) || !chooseSyntax()) {
            return;
        }
        while (place < cursor_.length()) {
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
                    ": an element goes beyond the end of the file; the file is cut off, fetch it again");
    }

    bool readHead(std::uint64_t place, const DicomSyntax& syntax, DicomElement& element) {
        switch (cursor_.readHead(place, syntax, element)) {
            case DicomCursor::Head::Good:
                return true;
            case DicomCursor::Head::Cut:
                return cut(place);
            case DicomCursor::Head::NoElement:
                break;
        }
        return fail("at byte " + std::to_string(place) + ": no DICOM element; the file is damaged");
    }

    /** The file meta information: always explicit and little-endian; ends where another group begins. */
    bool scanMeta(std::uint64_t& place) {
        for (;;) {
            std::array<unsigned char, 2> group{};
            if (!cursor_.get(place, group)) {
                return fail("ends before its data set; the file is cut off, fetch it again");
            }
            if (DicomCursor::decode(group.data(), 2, false) != 2) {
                break;
            }
            DicomElement element;
            if (!readHead(place, {}, element)) {
                return false;
            }
            if (!cursor_.isInside(element)) {
                return cut(place);
            }
            if (element.tag == dicomTag(2, 0x0010)) {
                slice_.transferSyntax = cursor_.text(element);
            } else if (element.tag == dicomTag(2, 0x0002)) {
                slice_.sopClass = cursor_.text(element);
            }
            place = element.end();
        }
        return !slice_.transferSyntax.empty() || fail("does not say how its data set is written; the file is damaged");
    }

    bool chooseSyntax() {
        const std::string& uid = slice_.transferSyntax;
        if (uid == "1.2.840.10008.1.2.1.99") {
            return fail("is compressed as a whole (deflated), which is not supported; store it uncompressed");
        }
        syntax_ = {uid == "1.2.840.10008.1.2", uid == "1.2.840.10008.1.2.2"};
        pixels_.bigEndian = syntax_.bigEndian;
        return true;
    }

    bool scanElement(std::uint64_t& place) {
        DicomElement element;
        if (!readHead(place, syntax_, element)) {
            return false;
        }
        if (element.tag == kPixelData) {
            pixels_.present = true;
            pixels_.swappedBytes = syntax_.bigEndian && element.is("OW");
            return element.length == kDicomUndefined ? scanFragments(element, place) : scanNative(element, place);
        }
        if (element.length == kDicomUndefined || isFunctionalGroup(element.tag)) {
            return scanSequence(element, place, syntax_, isFunctionalGroup(element.tag), 1);
        }
        if (!cursor_.isInside(element)) {
            return cut(place);
        }
        take(element);
        place = element.end();
        return true;
    }

    /** The items of a sequence, of defined or undefined length. `groups`: look for geometry and scaling in it. */
    bool scanSequence(const DicomElement& sequence, std::uint64_t& place, DicomSyntax syntax, bool groups, int depth) {
        const bool open = sequence.length == kDicomUndefined;
        if (depth > kDeepestNesting) {
            return fail("its sequences are nested too deeply; the file is damaged");
        }
        if (!open && !cursor_.isInside(sequence)) {
            return cut(sequence.start);
        }
        if (sequence.is("UN")) {
            syntax = {true, false};  // the content of an unknown type is written with implicit types (PS3.5, 6.2.2)
        }
        place = sequence.place;
        while (open || place < sequence.end()) {
            DicomElement item;
            if (!readHead(place, syntax, item)) {
                return false;
            }
            place = item.place;
            if (open && item.tag == kDicomSequenceEnd) {
                return true;
            }
            if (item.tag != kDicomItem) {
                return fail("at byte " + std::to_string(item.start) + ": no item of a sequence; the file is damaged");
            }
            if (!scanItem(item, place, syntax, groups, depth)) {
                return false;
            }
        }
        return true;
    }

    bool scanItem(const DicomElement& item, std::uint64_t& place, const DicomSyntax& syntax, bool groups, int depth) {
        const bool open = item.length == kDicomUndefined;
        if (!open && !cursor_.isInside(item)) {
            return cut(item.start);
        }
        if (!open && !groups) {
            place = item.end();
            return true;
        }
        while (open || place < item.end()) {
            DicomElement element;
            if (!readHead(place, syntax, element)) {
                return false;
            }
            place = element.place;
            if (open && element.tag == kDicomItemEnd) {
                return true;
            }
            const bool wanted = groups && isFunctionalGroup(element.tag);
            if (element.length == kDicomUndefined || wanted) {
                if (!scanSequence(element, place, syntax, wanted, depth + 1)) {
                    return false;
                }
                continue;
            }
            if (!cursor_.isInside(element)) {
                return cut(element.start);
            }
            if (groups) {
                takeGeometry(element);
            }
            place = element.end();
        }
        return true;
    }

    bool scanNative(const DicomElement& element, std::uint64_t& place) {
        if (!cursor_.isInside(element)) {
            return fail("its pixel data claim " + std::to_string(element.length) + " bytes, " +
                        std::to_string(cursor_.length() - std::min(element.place, cursor_.length())) +
                        " are there; the file is cut off, fetch it again");
        }
        pixels_.native = {element.place, element.length};
        place = element.end();
        return true;
    }

    /** Compressed pixel data: a table of offsets, which may be empty, then fragments, then the end of the sequence. */
    bool scanFragments(const DicomElement& element, std::uint64_t& place) {
        bool table = true;
        place = element.place;
        for (;;) {
            DicomElement item;
            if (!readHead(place, syntax_, item)) {
                return false;
            }
            place = item.place;
            if (item.tag == kDicomSequenceEnd) {
                return !pixels_.fragments.empty() || fail("its pixel data are empty; the file is damaged");
            }
            if (item.tag != kDicomItem || !cursor_.isInside(item)) {
                return cut(item.start);
            }
            if (table) {
                readOffsets(item);
            } else {
                pixels_.fragments.push_back({item.place, item.length});
            }
            table = false;
            place = item.end();
        }
    }

    void readOffsets(const DicomElement& item) {
        std::array<unsigned char, 4> raw{};
        for (std::uint64_t at = item.place; at + 4 <= item.end() && cursor_.get(at, raw); at += 4) {
            pixels_.offsets.push_back(DicomCursor::decode(raw.data(), 4, false));
        }
    }

    /** Decimal numbers between backslashes; nothing unless there are as many as asked for. */
    template <std::size_t N>
    std::optional<std::array<double, N>> numbers(const DicomElement& element) {
        std::string value = cursor_.text(element);
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

    std::optional<double> length(const DicomElement& element) {
        const auto values = numbers<1>(element);
        return values && (*values)[0] > 0.0 ? std::optional((*values)[0]) : std::nullopt;
    }

    void take(const DicomElement& element) {
        switch (element.tag) {
            case dicomTag(0x0008, 0x103E):
                slice_.description = cursor_.text(element);
                break;
            case dicomTag(0x0020, 0x000E):
                slice_.series = cursor_.text(element);
                break;
            case dicomTag(0x0020, 0x0013):
                slice_.instance = parseAs<std::int64_t>(cursor_.text(element));
                break;
            case dicomTag(0x0028, 0x0004):
                pixels_.photometric = cursor_.text(element);
                break;
            case dicomTag(0x0028, 0x0008):
                pixels_.frames = parseAs<std::uint64_t>(cursor_.text(element)).value_or(0);
                break;
            default:
                takePixelFacts(element);
                takeGeometry(element);
        }
    }

    void takePixelFacts(const DicomElement& element) {
        switch (element.tag) {
            case dicomTag(0x0028, 0x0002):
                pixels_.samples = cursor_.number(element, syntax_);
                break;
            case dicomTag(0x0028, 0x0010):
                pixels_.rows = cursor_.number(element, syntax_);
                break;
            case dicomTag(0x0028, 0x0011):
                pixels_.columns = cursor_.number(element, syntax_);
                break;
            case dicomTag(0x0028, 0x0100):
                pixels_.bitsAllocated = cursor_.number(element, syntax_);
                break;
            case dicomTag(0x0028, 0x0101):
                pixels_.bitsStored = cursor_.number(element, syntax_);
                break;
            case dicomTag(0x0028, 0x0102):
                pixels_.highBit = cursor_.number(element, syntax_);
                break;
            case dicomTag(0x0028, 0x0103):
                pixels_.isSigned = cursor_.number(element, syntax_) == 1;
                break;
            default:
                break;
        }
    }

    void takeGeometry(const DicomElement& element) {
        switch (element.tag) {
            case dicomTag(0x0018, 0x0050):
                slice_.sliceThickness = length(element);
                break;
            case dicomTag(0x0018, 0x0088):
                slice_.sliceSpacing = length(element);
                break;
            case dicomTag(0x0020, 0x0032):
                if (const auto position = numbers<3>(element)) {
                    slice_.positions.push_back(*position);
                }
                break;
            case dicomTag(0x0020, 0x0037):
                slice_.orientation = numbers<6>(element);
                break;
            case dicomTag(0x0028, 0x0030):
                slice_.pixelSpacing = numbers<2>(element);
                break;
            case dicomTag(0x0028, 0x1052):
                takeScaling(element, intercept_);
                break;
            case dicomTag(0x0028, 0x1053):
                takeScaling(element, slope_);
                break;
            default:
                break;
        }
    }

    void takeScaling(const DicomElement& element, std::optional<double>& value) {
        const auto stated = numbers<1>(element);
        if (!stated || (value && *value != (*stated)[0])) {
            scalingProblem_ = stated ? "its frames have slopes or intercepts of their own, which is not supported"
                                     : "its slope or intercept is no number; the file is damaged";
        } else {
            value = (*stated)[0];
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
        if (!pixels_.present) {
            slice_.noImage = isOtherClass();
            fail(slice_.noImage ? "holds no image (it is a report, a plan or a directory)"
                                : "ends before its pixel data; the file is cut off, fetch it again");
        } else if (pixels_.rows == 0 || pixels_.columns == 0 || pixels_.frames == 0) {
            fail("has a size of " + std::to_string(pixels_.columns) + " × " + std::to_string(pixels_.rows) + " × " +
                 std::to_string(pixels_.frames) + ", which has no voxels; the file is damaged");
        } else if (pixels_.samples != 1 || pixels_.photometric.compare(0, 10, "MONOCHROME") != 0) {
            fail("is in colour (" + pixels_.photometric + "); only grey images can be read, store them as grey values");
        } else if (!scalingProblem_.empty()) {
            fail(scalingProblem_);
        } else if (judgeBits()) {
            judgeLength();
        }
        pixels_.slope = slope_.value_or(1.0);
        pixels_.intercept = intercept_.value_or(0.0);
    }

    bool judgeBits() {
        const std::uint64_t bits = pixels_.bitsAllocated;
        if (bits != 8 && bits != 16 && bits != 32) {
            return fail("has samples of " + std::to_string(bits) + " bits; store them as 8, 16 or 32 bits");
        }
        if (pixels_.bitsStored == 0 || pixels_.highBit >= bits || pixels_.bitsStored > pixels_.highBit + 1) {
            return fail("its bits stored and high bit make no sense; the file is damaged");
        }
        return true;
    }

    /** Whether the pixel data can hold what the size claims. */
    void judgeLength() {
        std::uint64_t needed = pixels_.bitsAllocated / 8;
        for (const std::uint64_t factor : {pixels_.rows, pixels_.columns, pixels_.frames}) {
            if (__builtin_mul_overflow(needed, factor, &needed)) {
                fail("its size is impossible; the file is damaged");
                return;
            }
        }
        if (!pixels_.compressed()) {
            if (pixels_.native.length < needed) {
                fail("its pixel data hold " + std::to_string(pixels_.native.length) + " bytes, " +
                     std::to_string(needed) + " are needed for its size; the file is damaged");
            }
            return;
        }
        // The best codecs pack an empty image some thousand times; a claim far beyond that is no image.
        constexpr std::uint64_t kLargestRatio = 16384;
        std::uint64_t stored = 0;
        for (const FilePart& fragment : pixels_.fragments) {
            stored += fragment.length;
        }
        if (needed / kLargestRatio > stored || pixels_.fragments.size() < pixels_.frames) {
            fail("its pixel data are far too short for its size; the file is damaged");
        }
    }

    DicomCursor cursor_;
    DicomSlice& slice_;
    DicomPixelLayout& pixels_;
    DicomSyntax syntax_;
    std::optional<double> slope_;
    std::optional<double> intercept_;
    std::string scalingProblem_;
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
