#include <lyr_core/LyrMetaClass.h>
#include <lys_core/PresetFileName_p.h>
#include <lys_core/PresetIndex_p.h>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string_view>

namespace {

constexpr off_t MAXIMUM_BYTES = off_t(64) << 20;

LyrString translated(const char* text) {
    return QCoreApplication::translate("LyqPresetStore", text);
}

bool isSame(const timespec& a, const timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

bool drain(int file, std::string& bytes) {
    std::array<char, 65536> block{};
    for (;;) {
        const ssize_t count = ::read(file, block.data(), block.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return count == 0;
        }
        bytes.append(block.data(), static_cast<std::size_t>(count));
        if (static_cast<off_t>(bytes.size()) > MAXIMUM_BYTES) {
            errno = EFBIG;
            return false;
        }
    }
}

struct CloseFolder {
    void operator()(DIR* folder) const noexcept { ::closedir(folder); }
};

/** Finds its way in a text that is known to be JSON. */
class JsonText {
public:
    explicit JsonText(std::string_view text) : mText(text) {}

    /** Where the value of an object's member begins; `object` is the place of its brace. npos if there is none. */
    std::size_t findMember(std::size_t object, std::string_view key) const {
        std::size_t result = std::string_view::npos;
        std::size_t at = skipSpace(object + 1);
        while (at < mText.size() && mText[at] == '"') {
            const std::size_t end = endOfString(at);
            const std::size_t value = skipSpace(skipSpace(end) + 1);  // behind the colon
            if (mText.substr(at + 1, end - at - 2) == key) {
                result = value;  // the last one counts
            }
            at = endOfValue(value);
            at = skipSpace(at < mText.size() && mText[at] == ',' ? at + 1 : at);
        }
        return result;
    }

    std::size_t skipSpace(std::size_t at) const {
        at = mText.find_first_not_of(" \t\r\n", at);
        return at == std::string_view::npos ? mText.size() : at;
    }

    /** The place of the comma or bracket behind a value. */
    std::size_t endOfValue(std::size_t at) const {
        for (int depth = 0; at < mText.size(); ++at) {
            const char c = mText[at];
            if (c == '"') {
                at = endOfString(at) - 1;
            } else if (depth == 0 && (c == ',' || c == '}' || c == ']')) {
                return at;
            } else {
                depth += (c == '{' || c == '[') ? 1 : (c == '}' || c == ']') ? -1 : 0;
            }
        }
        return mText.size();
    }

private:
    std::size_t endOfString(std::size_t at) const {
        for (++at; at < mText.size() && mText[at] != '"'; ++at) {
            at += mText[at] == '\\' ? 1 : 0;
        }
        return std::min(at + 1, mText.size());
    }

    std::string_view mText;
};

/** A text as a JSON string, with its quotes. */
std::string quoted(const LyrString& text) {
    const QByteArray list = QJsonDocument(QJsonArray{static_cast<QString>(text)}).toJson(QJsonDocument::Compact);
    return list.mid(1, list.size() - 2).toStdString();
}

}  // namespace

bool lysInsertPresetName(std::string& bytes, const LyrString& name) {
    const JsonText text(bytes);
    const std::size_t root = bytes.find('{');
    const std::size_t properties = root == std::string::npos ? root : text.findMember(root, "properties");
    if (properties == std::string::npos || bytes[properties] != '{') {
        return false;
    }
    const std::size_t present = text.findMember(properties, "NameTemplate");
    std::string named = bytes;
    if (present != std::string::npos) {
        named.replace(present, text.endOfValue(present) - present, quoted(name));  // an empty name
    } else {
        const bool isOnly = bytes[text.skipSpace(properties + 1)] == '}';
        named.insert(properties + 1, "\n    \"NameTemplate\": " + quoted(name) + (isOnly ? "" : ","));
    }
    const PresetHeader header = PresetHeader::parse(std::string(), named);
    if (!header.carriesName || header.name != name) {
        return false;
    }
    bytes = std::move(named);
    return true;
}

bool lysReadPresetFile(const std::string& path, std::string& bytes, LyrString& reason) {
    bytes.clear();
    reason = LyrString();
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    struct stat status {};
    const bool isOpen = file >= 0 && ::fstat(file, &status) == 0;
    if (!isOpen && errno == ELOOP) {
        reason = translated(QT_TRANSLATE_NOOP("LyqPresetStore", "%1: this is a link, which presets do not follow"))
                     .arg(LyrString(path));
    } else if (isOpen && !S_ISREG(status.st_mode)) {
        reason = translated(QT_TRANSLATE_NOOP("LyqPresetStore", "%1: this is no ordinary file")).arg(LyrString(path));
    } else if (!isOpen || !drain(file, bytes)) {
        reason = translated(QT_TRANSLATE_NOOP("LyqPresetStore", "%1: cannot be read: %2"))
                     .arg({LyrString(path), LyrString(strerrordesc_np(errno))});
    }
    if (file >= 0) {
        ::close(file);
    }
    return reason.isNull();
}

PresetHeader PresetHeader::read(const std::string& path) {
    std::string bytes;
    LyrString reason;
    if (lysReadPresetFile(path, bytes, reason)) {
        return parse(path, bytes);
    }
    PresetHeader header;
    header.name = lys::presets::nameOfFile(std::filesystem::path(path).filename().string());
    header.problem = reason;
    return header;
}

PresetHeader PresetHeader::parse(const std::string& path, const std::string& bytes) {
    PresetHeader header;
    header.name = lys::presets::nameOfFile(std::filesystem::path(path).filename().string());
    QJsonParseError error;
    const QJsonObject root =
        QJsonDocument::fromJson(QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())), &error).object();
    if (error.error != QJsonParseError::NoError || root.value(QLatin1String("format")).toString() != "lyr-object") {
        header.problem = translated(
            QT_TRANSLATE_NOOP("LyqPresetStore", "%1: this is no whole preset; the file may be cut off or damaged"));
        header.problem = header.problem.arg(LyrString(path));
        return header;
    }
    header.className = root.value(QLatin1String("class")).toString().toStdString();
    header.baseName = root.value(QLatin1String("base")).toString().toStdString();
    header.isNewer = root.value(QLatin1String("version")).toDouble() > LyrObjectFile::VERSION;
    const QJsonValue name = root.value(QLatin1String("properties")).toObject().value(QLatin1String("NameTemplate"));
    if (!name.toString().isEmpty()) {
        const LyrString carried(name.toString());
        const LyrString reason = lys::presets::checkName(carried);
        header.name = reason.isNull() ? carried : header.name;
        header.carriesName = true;
        header.problem = reason.isNull() ? reason : LyrString(path) + LyrString(": ") + reason;
    }
    return header;
}

bool PresetHeader::isOf(const std::string& wanted) const {
    if (wanted.empty() || className == wanted || baseName == wanted || className.empty()) {
        return true;
    }
    const LyrMetaClass* meta = LyrMetaClass::find(className.c_str());
    return meta && meta->isOfType(wanted.c_str());
}

bool LyqPresetStore::Index::Known::isStillTrue(const struct stat& now) const {
    return inode == now.st_ino && size == now.st_size && isSame(modified, now.st_mtim) && isSame(changed, now.st_ctim);
}

int LyqPresetStore::Index::Known::rank() const {
    return !header.problem.isNull() ? 2 : isNamedAfterPreset ? 0 : 1;
}

const LyqPresetStore::Index::Known* LyqPresetStore::Index::examine(const std::string& path) {
    struct stat now {};
    if (::lstat(path.c_str(), &now) != 0) {
        files.erase(path);
        return nullptr;
    }
    Known& known = files[path];
    if (!known.isStillTrue(now)) {
        known.inode = now.st_ino;
        known.size = now.st_size;
        known.modified = now.st_mtim;
        known.changed = now.st_ctim;
        known.header = PresetHeader::read(path);
        known.isNamedAfterPreset =
            known.header.carriesName && path.ends_with('/' + lys::presets::fileNameOf(known.header.name));
    }
    return &known;
}

std::error_code LyqPresetStore::Index::scan(const std::string& folder, bool thorough) {
    ++mScan;
    errno = 0;
    const std::unique_ptr<DIR, CloseFolder> open(::opendir(folder.c_str()));
    int error = errno;
    while (open) {
        errno = 0;
        const dirent* entry = ::readdir(open.get());
        if (!entry) {
            error = errno;
            break;
        }
        const std::string_view name = entry->d_name;
        if (!name.ends_with(".json") || name.starts_with('.')) {
            continue;
        }
        std::string path = folder;
        path.append("/").append(name);
        const auto found = files.find(path);
        Known* known = found == files.end() ? nullptr : &found->second;
        const bool isTrusted = known && known->isNamedAfterPreset && known->listedInode == entry->d_ino;
        if (thorough || !isTrusted) {
            known = examine(path) ? &files[path] : nullptr;
        }
        if (known) {
            known->listedInode = entry->d_ino;
            known->scan = mScan;
        }
    }
    std::erase_if(files, [this](const auto& known) { return known.second.scan != mScan; });
    return std::error_code(error, std::generic_category());
}
