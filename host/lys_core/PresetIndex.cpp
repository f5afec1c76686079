#include <lyr_core/LyrMetaClass.h>
#include <lys_core/PresetFileName_p.h>
#include <lys_core/PresetIndex_p.h>

#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>

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

}  // namespace

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

std::optional<PresetHeader> LyqPresetStore::Index::headerOf(const std::string& path) {
    struct stat now {};
    if (::lstat(path.c_str(), &now) != 0) {
        files.erase(path);
        return std::nullopt;
    }
    const auto found = files.find(path);
    if (found != files.end() && found->second.isStillTrue(now)) {
        return found->second.header;
    }
    Known& known = files[path];
    known = {now.st_ino, now.st_size, now.st_mtim, now.st_ctim, PresetHeader::read(path)};
    return known.header;
}
