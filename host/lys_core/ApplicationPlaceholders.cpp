#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObject.h>
#include <lys_core/ApplicationPlaceholders.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace ly::i18n {

namespace {

struct Entry {
    QString key;
    QString name;
    QString description;
    Placeholders::Resolver resolver;
    std::string module;
};

/** Never destroyed: modules take their entries out when the process ends, after this library's statics. */
std::vector<Entry>& entries() {
    static auto& all = *new std::vector<Entry>;
    return all;
}

const Entry* findBy(QString Entry::*field, QStringView value) {
    const auto found =
        std::find_if(entries().begin(), entries().end(), [&](const Entry& entry) { return entry.*field == value; });
    return found != entries().end() ? &*found : nullptr;
}

QString toQt(const LyrString& text) {
    return text.isNull() ? QString() : QString::fromUtf8(text.utf8());
}

/** The text for a placeholder. False, and an error, when memory ran out: its place stays as it is. */
bool resolve(const Entry& entry, const LyrObject* object, QString& text) {
    try {
        text = toQt(entry.resolver(LyrString(entry.key), object));
        return true;
    } catch (...) {
        LyrError::emitError(LyrError::Message(object, Lyr::AllocationFailed));
        return false;
    }
}

bool isProper(const QString& text) {
    return !text.isEmpty() && !text.contains(QLatin1Char('{')) && !text.contains(QLatin1Char('}'));
}

/** Replaces what stands between `opening` and "}"; `replace` gives false to leave a place as it is. */
template <class Replace>
QString replacePlaces(const QString& text, const QString& opening, Replace replace) {
    QString result;
    qsizetype done = 0;
    qsizetype end = -1;
    for (qsizetype at = text.indexOf(opening); at >= 0; at = text.indexOf(opening, std::max(done, at + 1))) {
        const qsizetype inside = at + opening.size();
        // Several places before one "}" do not each look for it again: that takes minutes in a long text.
        end = end < inside ? text.indexOf(QLatin1Char('}'), inside) : end;
        if (end < 0) {
            break;
        }
        QString with;
        if (at >= done && replace(at, QStringView(text).mid(inside, end - inside), with)) {
            result += QStringView(text).mid(done, at - done);
            result += with;
            done = end + 1;
        }
    }
    result += QStringView(text).mid(done);
    return result;
}

const QString INTERNAL_OPENING = QStringLiteral("%{");
const QString EDIT_OPENING = QStringLiteral("{");

}  // namespace

bool Placeholders::add(const LyrString& key, const LyrString& name, const LyrString& description, Resolver resolver,
                       const char* module) {
    try {
        Entry entry{toQt(key), toQt(name), toQt(description), resolver, module ? module : ""};
        if (!isProper(entry.key) || !isProper(entry.name) || !resolver || findBy(&Entry::key, entry.key)) {
            return false;
        }
        entries().push_back(std::move(entry));
        return true;
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return false;
    }
}

int Placeholders::removeAllFrom(const char* module) {
    return static_cast<int>(
        std::erase_if(entries(), [&](const Entry& entry) { return module && entry.module == module; }));
}

bool Placeholders::contains(const LyrString& key) {
    return findBy(&Entry::key, toQt(key)) != nullptr;
}

QString Placeholders::internalToDisplayText(const QString& text, const LyrObject* object, bool* error) {
    bool unknown = false;
    QString result = replacePlaces(text, INTERNAL_OPENING, [&](qsizetype, QStringView key, QString& with) {
        const Entry* entry = findBy(&Entry::key, key);
        unknown = unknown || !entry;
        return entry && resolve(*entry, object, with);
    });
    if (error) {
        *error = unknown;
    }
    return result;
}

QString Placeholders::internalToEditText(const QString& text, const LyrObject*) {
    return replacePlaces(text, INTERNAL_OPENING, [&](qsizetype, QStringView key, QString& with) {
        const Entry* entry = findBy(&Entry::key, key);
        if (entry) {
            with = QLatin1Char('{') + entry->name + QLatin1Char('}');
        }
        return entry != nullptr;
    });
}

// "%{Key}" in an edit text is a placeholder that was unknown to the editor: it stays. "%{Name}" is a percent sign
// before a placeholder, as in "90 %{Value unit}".
QString Placeholders::editToInternalText(const QString& text, const LyrObject*) {
    return replacePlaces(text, EDIT_OPENING, [&](qsizetype, QStringView name, QString& with) {
        const Entry* entry = findBy(&Entry::name, name);
        if (entry) {
            with = QStringLiteral("%{") + entry->key + QLatin1Char('}');
        }
        return entry != nullptr;
    });
}

}  // namespace ly::i18n
