#include <lyr_volume/LyrDicomScanner_p.h>
#include <lyr_volume/LyrHeaderText_p.h>

namespace lyrvolume {
namespace {

/** Types whose length takes four bytes (PS3.5, 7.1.2). */
bool hasLongLength(const DicomElement& element) {
    static constexpr std::array<const char*, 13> kTypes{"OB", "OW", "OF", "OD", "OL", "OV", "SQ",
                                                        "UC", "UR", "UT", "UN", "SV", "UV"};
    return std::any_of(kTypes.begin(), kTypes.end(), [&](const char* type) { return element.is(type); });
}

bool isUpperCase(char c) {
    return c >= 'A' && c <= 'Z';
}

}  // namespace

bool DicomCursor::get(std::uint64_t place, std::span<unsigned char> out) {
    if (place > file_.length() || out.size() > file_.length() - place) {
        return false;
    }
    if (out.size() > window_.size()) {
        return file_.readAt(place, out) == out.size();
    }
    if (place < start_ || place + out.size() > start_ + count_) {
        start_ = place;
        count_ = file_.readAt(place, window_);
        if (count_ < out.size()) {
            return false;
        }
    }
    std::copy_n(window_.begin() + static_cast<std::ptrdiff_t>(place - start_), out.size(), out.begin());
    return true;
}

std::uint32_t DicomCursor::decode(const unsigned char* raw, std::size_t bytes, bool bigEndian) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < bytes; ++i) {
        value = value << 8U | raw[bigEndian ? i : bytes - 1 - i];
    }
    return value;
}

DicomCursor::Head DicomCursor::readHead(std::uint64_t place, const DicomSyntax& syntax, DicomElement& element) {
    std::array<unsigned char, 8> head{};
    if (!get(place, head)) {
        return Head::Cut;
    }
    const bool big = syntax.bigEndian;
    element.start = place;
    element.tag = dicomTag(decode(head.data(), 2, big), decode(head.data() + 2, 2, big));
    element.place = place + 8;
    element.type = {};
    if (syntax.implicitTypes || element.tag >> 16U == 0xFFFE) {  // delimiters never have a type
        element.length = decode(head.data() + 4, 4, big);
        return Head::Good;
    }
    element.type = {static_cast<char>(head[4]), static_cast<char>(head[5])};
    if (!isUpperCase(element.type[0]) || !isUpperCase(element.type[1])) {
        return Head::NoElement;
    }
    element.length = decode(head.data() + 6, 2, big);
    if (hasLongLength(element)) {
        std::array<unsigned char, 4> length{};
        if (!get(place + 8, length)) {
            return Head::Cut;
        }
        element.length = decode(length.data(), 4, big);
        element.place = place + 12;
    }
    return Head::Good;
}

std::string DicomCursor::text(const DicomElement& element) {
    std::string value(std::min<std::uint32_t>(element.length, 1024), '\0');
    if (!get(element.place, {reinterpret_cast<unsigned char*>(value.data()), value.size()})) {
        return {};
    }
    return std::string(trimmed(std::string_view(value).substr(0, value.find('\0'))));
}

std::uint64_t DicomCursor::number(const DicomElement& element, const DicomSyntax& syntax) {
    std::array<unsigned char, 2> raw{};
    return element.length >= 2 && get(element.place, raw) ? decode(raw.data(), 2, syntax.bigEndian) : 0;
}

}  // namespace lyrvolume
