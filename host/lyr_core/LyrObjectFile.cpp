#include <lyr_core/LyrFileIo_p.h>
#include <lyr_core/LyrFileSaver.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectFile.h>
#include <lyr_core/LyrObjectJson_p.h>
#include <lyr_core/LyrObjectUnknownData_p.h>
#include <lyr_core/LyrProperty.h>

#include <cerrno>
#include <memory>
#include <new>
#include <utility>

namespace {

using Report = LyrObjectFile::Report;

bool fail(Report& report, std::string_view message) {
    report.ok = false;
    report.message = LyrString(message);
    return false;
}

/** Runs an operation; running out of memory is a failure like any other. */
template <class Operation>
bool guarded(Report& report, Operation operation) {
    report = Report();
    try {
        report.ok = operation();
    } catch (...) {
        report.ok = false;
        report.message = lyrOutOfMemoryText();
    }
    return report.ok;
}

bool parse(std::string_view text, const LyrObjectRequest& request, LyrObjectPtr& out, Report& report) {
    LyrJsonValue root;
    std::string message;
    if (!lyrParseJson(text, root, message)) {
        return fail(report, message);
    }
    if (!lyrObjectFromJson(root, request, out, report)) {
        return false;
    }
    if (report.newerVersion) {
        report.message = LyrString("written by a newer version of the program (" + std::to_string(lyrVersionOf(root)) +
                                   "); read as far as it is understood, and not to be overwritten");
    }
    return true;
}

/** A path in front of a message, as far as the system reads it. */
LyrString withPath(const std::string& path, const LyrString& message) {
    return LyrString(path.substr(0, path.find('\0')) + ": ") + message;
}

/** Puts a path in front of the messages of a report, as far as there is memory for it. */
void addPath(const std::string& path, Report& report) noexcept {
    try {
        if (!report.message.isEmpty()) {
            report.message = withPath(path, report.message);
        }
        for (LyrString& warning : report.warnings) {
            warning = withPath(path, warning);
        }
    } catch (...) {
        // The messages stay as they are.
    }
}

bool isSoftLink(const LyrProperty& property) {
    return property.getValueType() == LyrValueType::Link && !lyrOwnsLinks(property);
}

/** The values of an object, to be put back when a copy onto it fails part-way. */
class Backup {
public:
    explicit Backup(LyrObject& object) : mObject(object) {
        if (const auto* unknown = object.getUnknownData()) {
            mUnknown = unknown->shared_from_this();
        }
        for (std::int64_t i = 0; i < object.getPropertyCount(); ++i) {
            const LyrProperty& property = *object.getPropertyAt(i);
            if (property.isStored()) {
                mStates.emplace_back(property.getPropertyID(), property.takeState());
                if (!mStates.back().second) {
                    throw std::bad_alloc();
                }
            }
        }
    }

    void restore() {
        mObject.setUnknownData(mUnknown);
        for (const auto& [id, state] : mStates) {
            if (LyrProperty* property = mObject.getProperty(id)) {
                property->restoreState(*state);
            }
        }
    }

private:
    LyrObject& mObject;
    std::shared_ptr<const LyrObjectUnknownData> mUnknown;
    std::vector<std::pair<Lyrenum, std::unique_ptr<LyrProperty::State>>> mStates;
};

bool handOver(LyrObject& fresh, LyrObject& target, Report& report) {
    Backup backup(target);
    for (std::int64_t i = 0; i < target.getPropertyCount(); ++i) {
        const LyrProperty& property = *target.getPropertyAt(i);
        LyrProperty* twin = fresh.getProperty(property.getPropertyID());
        if (twin && isSoftLink(property)) {
            twin->copyValueFrom(property);
        }
    }
    // A copy leaves properties alone that the source lacks.
    if (*target.getNameTemplate() != '\0' && !fresh.getProperty(Lyr::NameTemplate)) {
        fresh.setNameTemplate(nullptr);
    }
    try {
        if (target.copyFrom(fresh)) {
            lyrPrepareOwnedRoles(target);
            return true;
        }
    } catch (...) {
        backup.restore();
        throw;
    }
    backup.restore();
    return fail(report, "the object refused the values; it is as it was");
}

/** False if the file that is about to be replaced must not be. */
bool isReplaceable(const std::string& path, Report& report) {
    std::string text;
    std::string reason;
    int error = 0;
    if (!lyrReadFile(path, LyrJsonValue::MAXIMUM_TEXT, text, reason, &error)) {
        return error == ENOENT ||
               fail(report, "the file that is there is not replaced, its version is unknown: " + reason);
    }
    // A file that is broken may be replaced, but not if its beginning shows a higher version.
    LyrJsonValue root;
    lyrParseJson(text, root, reason);
    report.newerVersion = lyrVersionOf(root) > LyrObjectFile::VERSION;
    return !report.newerVersion || fail(report,
                                        "the file that is there was written by a newer version of the program and is "
                                        "not overwritten; save under another name");
}

}  // namespace

bool LyrObjectFile::write(const LyrObject& object, std::string& text, LyrString* message) {
    std::string reason;
    std::string written;
    try {
        LyrJsonValue root;
        if (lyrObjectToJson(object, root, reason) && lyrFormatJson(root, written, reason)) {
            text.swap(written);
            return true;
        }
        if (message) {
            *message = LyrString(reason);
        }
    } catch (...) {
        if (message) {
            *message = lyrOutOfMemoryText();
        }
    }
    return false;
}

bool LyrObjectFile::read(std::string_view text, LyrObjectPtr& out, Report& report,
                         std::initializer_list<const char*> classes, Lyrenum scope) {
    return guarded(report, [&] {
        LyrObjectPtr made;
        if (!parse(text, {nullptr, classes, scope}, made, report)) {
            return false;
        }
        lyrPrepareOwnedRoles(*made);
        out = made;
        return true;
    });
}

bool LyrObjectFile::readInto(std::string_view text, LyrObject& target, Report& report) {
    return guarded(report, [&] {
        LyrObjectPtr fresh;
        return parse(text, {&target.getMetaClass(), {}, Lyr::DocumentScope}, fresh, report) &&
               handOver(*fresh, target, report);
    });
}

bool LyrObjectFile::load(const std::string& path, LyrObjectPtr& out, Report& report,
                         std::initializer_list<const char*> classes, Lyrenum scope) {
    std::string text;
    const bool read_ = guarded(report, [&] {
        std::string reason;
        return lyrReadFile(path, LyrJsonValue::MAXIMUM_TEXT, text, reason) || fail(report, reason);
    });
    const bool done = read_ && read(text, out, report, classes, scope);
    addPath(path, report);
    return done;
}

bool LyrObjectFile::loadInto(const std::string& path, LyrObject& target, Report& report) {
    std::string text;
    const bool read_ = guarded(report, [&] {
        std::string reason;
        return lyrReadFile(path, LyrJsonValue::MAXIMUM_TEXT, text, reason) || fail(report, reason);
    });
    const bool done = read_ && readInto(text, target, report);
    addPath(path, report);
    return done;
}

bool LyrObjectFile::save(const LyrObject& object, const std::string& path, Report& report) {
    return guarded(report, [&] {
        std::string text;
        if (!write(object, text, &report.message) || !isReplaceable(path, report)) {
            report.message = withPath(path, report.message);
            return false;
        }
        return LyrFileSaver::replace(path, text, &report.message);
    });
}

bool LyrObjectFile::mayReplace(const std::string& path, Report& report) {
    const bool done = guarded(report, [&] { return isReplaceable(path, report); });
    addPath(path, report);
    return done;
}
