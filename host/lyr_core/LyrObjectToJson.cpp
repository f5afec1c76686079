#include <lyr_core/LyrJsonCodec_p.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectJson_p.h>
#include <lyr_core/LyrObjectUnknownData_p.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

using Kind = LyrJsonValue::Kind;

bool isRoot(const LyrMetaClass& meta) {
    return &meta == &LyrObject::metaClass();
}

/** The class that a reader may take for an object whose own class it does not know; empty if there is none. */
std::string baseNameOf(const LyrMetaClass& meta) {
    const LyrMetaClass* parent = meta.getParent();
    if (isRoot(meta) || !parent || isRoot(*parent)) {
        return {};
    }
    for (const LyrMetaClass* at = parent; at && !isRoot(*at); at = at->getParent()) {
        if (std::strcmp(at->getModule(), meta.getModule()) != 0) {
            return at->getClassName();
        }
    }
    return parent->getClassName();
}

template <class T>
LyrJsonValue encodeItem(T value) {
    const auto parts = lyrComponents(value);
    if constexpr (parts.size() == 1) {
        return lyrEncode(*parts[0]);
    } else {
        LyrJsonValue array(Kind::Array);
        for (const auto* part : parts) {
            array.items.push_back(lyrEncode(*part));
        }
        return array;
    }
}

class Writer {
public:
    explicit Writer(std::string& message) : mMessage(message) {}

    bool writeObject(const LyrObject& object, const std::string& place, std::size_t depth, LyrJsonValue& out) {
        // Each level of ownership takes two levels of the text at least.
        if (2 * depth > LyrJsonValue::MAXIMUM_DEPTH || ++mObjects > LyrObjectFormat::MAXIMUM_OBJECTS) {
            return fail(place, "more objects, or nested deeper, than a file may hold");
        }
        const auto* unknown = object.getUnknownData();
        writeClass(object.getMetaClass(), unknown, out);
        LyrJsonValue& properties = out.add("properties", LyrJsonValue(Kind::Object));
        for (std::int64_t i = 0; i < object.getPropertyCount(); ++i) {
            const LyrProperty& property = *object.getPropertyAt(i);
            if (property.isStored() && property.getPropertyID() != Lyr::NameTemplate &&
                !writeProperty(property, place + ".properties", depth, properties)) {
                return false;
            }
        }
        if (!writeNameTemplate(object, place, properties)) {
            return false;
        }
        if (unknown) {
            addMissing(unknown->properties, properties);
            addMissing(unknown->members, out);
        }
        return true;
    }

private:
    bool fail(const std::string& place, const std::string& reason) {
        mMessage = (place.starts_with('.') ? place.substr(1) : place) + ": " + reason;
        return false;
    }

    static void writeClass(const LyrMetaClass& meta, const LyrObjectUnknownData* unknown, LyrJsonValue& out) {
        const bool standsIn = unknown && !unknown->className.empty() && unknown->standIn == meta.getClassName();
        const std::string base = standsIn ? unknown->standIn : baseNameOf(meta);
        out.add("class", LyrJsonValue(Kind::String, standsIn ? unknown->className : meta.getClassName()));
        if (!base.empty()) {
            out.add("base", LyrJsonValue(Kind::String, base));
        }
    }

    static void addMissing(const LyrJsonValue& kept, LyrJsonValue& object) {
        // What is kept holds no name twice, so only what the object itself wrote is compared.
        const std::vector<std::string> written = object.keys;
        for (std::size_t i = 0; i < kept.items.size(); ++i) {
            if (std::find(written.begin(), written.end(), kept.keys[i]) == written.end()) {
                object.add(kept.keys[i], kept.items[i]);
            }
        }
    }

    bool writeNameTemplate(const LyrObject& object, const std::string& place, LyrJsonValue& properties) {
        LyrJsonValue name;
        const LyrProperty* property = object.getProperty(Lyr::NameTemplate);
        if (property && !writeString(*property, place + ".properties.NameTemplate", name)) {
            return false;
        }
        if (!name.text.empty()) {
            properties.add("NameTemplate", std::move(name));
        }
        return true;
    }

    // The value type of a single value or a link tells its interface, which is never null then.
    bool writeProperty(const LyrProperty& property, const std::string& parent, std::size_t depth, LyrJsonValue& out) {
        const LyrValueType type = property.getValueType();
        if (type == LyrValueType::Link && !lyrOwnsLinks(property)) {
            return true;
        }
        const std::string key = lyrPropertyKey(property.getPropertyID());
        const std::string place = parent + '.' + key;
        LyrJsonValue value;
        const bool done = type == LyrValueType::Link      ? writeLinks(property, place, depth, value)
                          : property.isArray()            ? writeList(property, place, value)
                          : type == LyrValueType::Boolean ? writeBoolean(property, place, value)
                          : type == LyrValueType::String  ? writeString(property, place, value)
                                                          : writeSingle(property, place, value);
        if (done) {
            out.add(key, std::move(value));
        }
        return done;
    }

    bool unreadable(const std::string& place) { return fail(place, "the value cannot be read"); }

    bool writeBoolean(const LyrProperty& property, const std::string& place, LyrJsonValue& out) {
        Lyrenum value;
        const auto* typed = LyrSingleValuePropertyIF<Lyrenum>::getInterfaceConst(&property);
        if (!typed->getValue(value)) {
            return unreadable(place);
        }
        out = LyrJsonValue(value == 0 ? Kind::False : Kind::True);
        return true;
    }

    bool writeString(const LyrProperty& property, const std::string& place, LyrJsonValue& out) {
        const char* value = nullptr;
        const auto* typed = LyrSingleValuePropertyIF<const char*>::getInterfaceConst(&property);
        return typed->getValue(value) ? writeText(value, place, out) : unreadable(place);
    }

    bool writeText(const char* value, const std::string& place, LyrJsonValue& out) {
        if (value && !lyrIsUtf8(value)) {
            return fail(place, "the text is not valid UTF-8 and cannot be saved; type it anew");
        }
        out = value ? LyrJsonValue(Kind::String, value) : LyrJsonValue(Kind::Null);
        return true;
    }

    bool writeSingle(const LyrProperty& property, const std::string& place, LyrJsonValue& out) {
        const bool done = lyrVisitPlainType(property.getValueType(), [&](auto type) {
            using T = typename decltype(type)::type;
            T value{};
            const auto* typed = LyrSingleValuePropertyIF<T>::getInterfaceConst(&property);
            if (!typed->getValue(value)) {
                return false;
            }
            out = encodeItem(value);
            return true;
        });
        return done || unreadable(place);
    }

    bool writeList(const LyrProperty& property, const std::string& place, LyrJsonValue& out) {
        out.kind = Kind::Array;
        const bool done = lyrVisitPlainType(property.getValueType(), [&](auto type) {
            using T = typename decltype(type)::type;
            const auto* typed = LyrValueArrayPropertyIF<T>::getInterfaceConst(&property);
            return typed && writeItems(*typed, place, out);
        });
        return done || (mMessage.empty() ? unreadable(place) : false);
    }

    template <class T>
    bool writeItems(const LyrValueArrayPropertyIF<T>& list, const std::string& place, LyrJsonValue& out) {
        const long long count = list.getArraySize();
        if (count > static_cast<long long>(LyrJsonValue::MAXIMUM_VALUES)) {
            return fail(place, "more items than a file may hold");
        }
        std::vector<T> items(static_cast<std::size_t>(count));
        if (!list.getArrayItems(0, count - 1, items.data())) {
            return false;
        }
        out.items.reserve(items.size());
        for (std::size_t i = 0; i < items.size(); ++i) {
            if constexpr (std::is_same_v<T, float>) {
                if (!std::isfinite(items[i]) && !list.allowsNonFinite()) {
                    return fail(place + '[' + std::to_string(i) + ']', "the number is not finite");
                }
            }
            out.items.push_back(encodeItem(items[i]));
        }
        return true;
    }

    bool writeLinks(const LyrProperty& property, const std::string& place, std::size_t depth, LyrJsonValue& out) {
        if (const auto* single = LyrSingleLinkIF::getInterfaceConst(&property)) {
            LyrObjectLink link;
            return single->getValue(link) ? writeLink(link, place, depth, out) : unreadable(place);
        }
        const auto* list = LyrLinkListIF::getInterfaceConst(&property);
        std::vector<LyrObjectLink> links(static_cast<std::size_t>(list->getArraySize()));
        if (!list->getArrayItems(0, static_cast<long long>(links.size()) - 1, links.data())) {
            return unreadable(place);
        }
        out.kind = Kind::Array;
        for (std::size_t i = 0; i < links.size(); ++i) {
            if (!writeLink(links[i], place + '[' + std::to_string(i) + ']', depth, out.items.emplace_back())) {
                return false;
            }
        }
        return true;
    }

    bool writeLink(const LyrObjectLink& link, const std::string& place, std::size_t depth, LyrJsonValue& out) {
        if (link.isNull()) {
            return true;
        }
        out.kind = Kind::Object;
        return writeObject(*link.getLink(), place, depth + 1, out);
    }

    std::string& mMessage;
    std::size_t mObjects = 0;
};

}  // namespace

std::string lyrPropertyKey(Lyrenum id) {
    std::string name = lyrNameOf(id);
    return name.empty() ? std::to_string(int(id)) : name;
}

bool lyrOwnsLinks(const LyrProperty& property) {
    if (const auto* single = dynamic_cast<const LyrSingleLinkOP*>(&property)) {
        return single->getOwnership() != LyrLinkOwnership::Soft;
    }
    const auto* list = dynamic_cast<const LyrLinkListOP*>(&property);
    return list && list->getOwnership() != LyrLinkOwnership::Soft;
}

bool lyrObjectToJson(const LyrObject& object, LyrJsonValue& root, std::string& message) {
    message.clear();
    root = LyrJsonValue(Kind::Object);
    root.add("format", LyrJsonValue(Kind::String, LyrObjectFormat::FORMAT));
    root.add("version", lyrEncode(static_cast<long long>(LyrObjectFile::VERSION)));
    return Writer(message).writeObject(object, {}, 0, root);
}
