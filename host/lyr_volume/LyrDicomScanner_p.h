#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include <lyr_volume/LyrInputFile_p.h>

namespace lyrvolume {

constexpr std::uint32_t kDicomUndefined = 0xFFFFFFFF;

constexpr std::uint32_t dicomTag(std::uint32_t group, std::uint32_t element) {
    return group << 16U | element;
}

constexpr std::uint32_t kDicomItem = dicomTag(0xFFFE, 0xE000);
constexpr std::uint32_t kDicomItemEnd = dicomTag(0xFFFE, 0xE00D);
constexpr std::uint32_t kDicomSequenceEnd = dicomTag(0xFFFE, 0xE0DD);

/** How the elements of a data set are written. */
struct DicomSyntax {
    bool implicitTypes = false;
    bool bigEndian = false;
};

/** Tag, type and length of an element, and where its value lies. */
struct DicomElement {
    std::uint32_t tag = 0;
    std::array<char, 2> type{};  ///< zeros where types are implicit
    std::uint32_t length = 0;
    std::uint64_t start = 0;  ///< of the tag
    std::uint64_t place = 0;  ///< of the value

    bool is(const char* name) const { return type[0] == name[0] && type[1] == name[1]; }
    std::uint64_t end() const { return place + length; }
};

/** Reads elements and their values out of a file, through a small window, so that tags need no call to the system each.
 */
class DicomCursor {
public:
    explicit DicomCursor(const InputFile& file) : file_(file) {}

    std::uint64_t length() const { return file_.length(); }

    /** False, without a message, when the bytes are not all there. */
    bool get(std::uint64_t place, std::span<unsigned char> out);

    enum class Head { Good, Cut, NoElement };
    Head readHead(std::uint64_t place, const DicomSyntax& syntax, DicomElement& element);

    /** Whether the whole value lies in the file. */
    bool isInside(const DicomElement& element) const {
        return element.place <= length() && element.length <= length() - element.place;
    }

    /** Up to a kilobyte of a value, without padding. */
    std::string text(const DicomElement& element);
    /** A 16-bit number; 0 where there is none. */
    std::uint64_t number(const DicomElement& element, const DicomSyntax& syntax);

    static std::uint32_t decode(const unsigned char* raw, std::size_t bytes, bool bigEndian);

private:
    const InputFile& file_;
    std::array<unsigned char, 4096> window_{};
    std::uint64_t start_ = 0;
    std::size_t count_ = 0;
};

}  // namespace lyrvolume
