#include <lyr_core/LyrJsonCodec_p.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrMemoryWatch_p.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectJson_p.h>
#include <lyr_core/LyrObjectUnknownData_p.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace {

using Kind = LyrJsonValue::Kind;

/** Makes objects of a tree, and knows where in the tree it is. */
class Reader {
public:
    Reader(const LyrObjectRequest& request, LyrObjectFile::Report& report) : mRequest(request), mReport(report) {}

    bool readRoot(const LyrJsonValue& root, LyrObjectPtr& out) {
        if (!checkHeader(root)) {
            return tell();
        }
        LyrObjectPtr made;
        if (!readObject(root, mRequest.target, made)) {
            return tell();
        }
        out = made;
        return true;
    }

private:
    /** Makes the path one step longer while it lives. */
    class Step {
    public:
        Step(std::string& path, std::string_view member) : mPath(path), mLength(path.size()) {
            mPath += mPath.empty() ? "" : ".";
            mPath += member;
        }
        Step(std::string& path, std::size_t index) : mPath(path), mLength(path.size()) {
            mPath += '[' + std::to_string(index) + ']';
        }
        ~Step() { mPath.resize(mLength); }
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

    private:
        std::string& mPath;
        std::size_t mLength;
    };

    bool fail(const LyrJsonValue& at, const std::string& reason) {
        mFailure = "line " + std::to_string(at.line) + (mPath.empty() ? "" : ", ") + mPath + ": " + reason;
        return false;
    }
    bool tell() {
        mReport.message = LyrString(mFailure);
        return false;
    }

    // Header and class

    bool checkHeader(const LyrJsonValue& root) {
        const LyrJsonValue* format = root.find("format");
        if (!format || format->kind != Kind::String || format->text != LyrObjectFormat::FORMAT) {
            return fail(root, "this is no object file: there is no \"format\": \"lyr-object\"");
        }
        const LyrJsonValue* number = root.find("version");
        const int version = lyrVersionOf(root);
        if (version < 1) {
            return fail(number ? *number : root, "\"version\" must be a whole number from 1 on");
        }
        mReport.newerVersion = version > LyrObjectFile::VERSION;
        return true;
    }

    /** A class that objects of a file may have; null if there is none of this name. */
    static const LyrMetaClass* findClass(const LyrJsonValue* name) {
        if (!name || name->kind != Kind::String || name->text.find('\0') != std::string::npos) {
            return nullptr;
        }
        const LyrMetaClass* meta = LyrMetaClass::find(name->text.c_str());
        const bool fits = meta && meta->isStorable() && !meta->isSingleton() && meta->isOfType(LyrObject::metaClass());
        return fits ? meta : nullptr;
    }

    /** The class to make an object of: the one named, else its base (then `unknown` notes the name). */
    const LyrMetaClass* resolveClass(const LyrJsonValue& json, LyrObjectUnknownData& unknown) {
        const LyrJsonValue* name = json.find("class");
        if (!name || name->kind != Kind::String || name->text.empty()) {
            fail(name ? *name : json, "\"class\" must name a class");
            return nullptr;
        }
        const LyrMetaClass* meta = findClass(name);
        const LyrJsonValue* base = json.find("base");
        if (meta || LyrMetaClass::find(name->text.c_str()) || !(meta = findClass(base))) {
            if (!meta) {
                fail(*name, "no object of the class \"" + name->text.substr(0, 80) +
                                "\" can be made; the module that knows it may not be loaded");
            }
            return meta;
        }
        unknown.className = name->text;
        unknown.standIn = base->text;
        warn(*name, "the class \"" + name->text.substr(0, 80) + "\" is not known here; taken for its base \"" +
                        base->text.substr(0, 80) + '"');
        return meta;
    }

    void warn(const LyrJsonValue& at, const std::string& text) {
        fail(at, text);
        mReport.warnings.push_back(LyrString(mFailure));
    }

    bool checkClass(const LyrJsonValue& json, const LyrMetaClass& meta, const LyrMetaClass* target) {
        const bool isListed =
            mRequest.classes.size() == 0 || std::any_of(mRequest.classes.begin(), mRequest.classes.end(),
                                                        [&](auto name) { return meta.isOfType(name); });
        const bool isBase = target && target->isOfType(meta) && &meta != &LyrObject::metaClass();
        if (isListed && (!target || meta.isOfType(*target) || isBase)) {
            return true;
        }
        std::string wanted = target ? target->getClassName() : "";
        for (const char* name : mRequest.classes) {
            wanted += (wanted.empty() ? "" : "\" or \"") + std::string(name);
        }
        return fail(json,
                    "the file holds a \"" + std::string(meta.getClassName()) + "\", needed is a \"" + wanted + '"');
    }

    // Objects

    bool readObject(const LyrJsonValue& json, const LyrMetaClass* target, LyrObjectPtr& out) {
        if (json.kind != Kind::Object) {
            return fail(json, "an object is needed");
        }
        const auto unknown = std::make_shared<LyrObjectUnknownData>();
        const LyrMetaClass* meta = resolveClass(json, *unknown);
        const bool isRoot = mObjects == 0;
        if (!meta || (isRoot && !checkClass(json, *meta, target))) {
            return false;
        }
        const LyrJsonValue* properties = json.find("properties");
        if (!properties || properties->kind != Kind::Object) {
            return fail(properties ? *properties : json, "\"properties\" must be there, as an object");
        }
        LyrObjectPtr made;
        if (!make(json, target ? *target : *meta, made)) {
            return false;
        }
        keepUnknownMembers(json, isRoot, *unknown);
        const Step step(mPath, "properties");
        if (!readProperties(*properties, isRoot, *made, *unknown)) {
            return false;
        }
        if (!unknown->isEmpty()) {
            made->setUnknownData(unknown);
        }
        out = made;
        return true;
    }

    bool make(const LyrJsonValue& json, const LyrMetaClass& meta, LyrObjectPtr& out) {
        if (++mObjects > LyrObjectFormat::MAXIMUM_OBJECTS) {
            mIsHopeless = true;
            return fail(json, "more objects than a file may hold");
        }
        const LyrMemoryWatch watch;
        LyrClass* made = meta.create();
        auto* object = dynamic_cast<LyrObject*>(made);
        // An object that found no memory for a property is not what the file describes.
        if (!object || watch.hasFailed()) {
            LyrMetaClass::destruct(made, true);
            return fail(json, "the object could not be made");
        }
        object->setScope(mRequest.scope);
        out = LyrObjectPtr(object);
        return true;
    }

    static void keepUnknownMembers(const LyrJsonValue& json, bool isRoot, LyrObjectUnknownData& unknown) {
        for (std::size_t i = 0; i < json.keys.size(); ++i) {
            const std::string& key = json.keys[i];
            const bool known = key == "class" || key == "base" || key == "properties" ||
                               (isRoot && (key == "format" || key == "version"));
            if (!known) {
                unknown.members.add(key, json.items[i]);
            }
        }
    }

    static const LyrJsonValue* findProperty(const LyrJsonValue& json, Lyrenum id) {
        const LyrJsonValue* named = json.find(lyrPropertyKey(id));
        return named ? named : json.find(std::to_string(int(id)));
    }

    bool readProperties(const LyrJsonValue& json, bool isRoot, LyrObject& object, LyrObjectUnknownData& unknown) {
        std::vector<const LyrJsonValue*> taken;
        for (std::int64_t i = 0; i < object.getPropertyCount(); ++i) {
            LyrProperty& property = *object.getPropertyAt(i);
            const bool isLink = property.getValueType() == LyrValueType::Link;
            if (!property.isStored() || property.getPropertyID() == Lyr::NameTemplate ||
                (isLink && !lyrOwnsLinks(property))) {
                continue;
            }
            const LyrJsonValue* value = findProperty(json, property.getPropertyID());
            taken.push_back(value);
            if (!value && isRoot) {
                mReport.missing.push_back(property.getPropertyID());
            }
            if (value ? !readOrReplace(*value, property) : !reset(json, property)) {
                return false;
            }
        }
        const LyrJsonValue* name = json.find("NameTemplate");
        taken.push_back(name);
        if (!readNameTemplate(name, object)) {
            return false;
        }
        for (std::size_t i = 0; i < json.items.size(); ++i) {
            if (std::find(taken.begin(), taken.end(), &json.items[i]) == taken.end()) {
                unknown.properties.add(json.keys[i], json.items[i]);
            }
        }
        return true;
    }

    bool readNameTemplate(const LyrJsonValue* json, LyrObject& object) {
        LyrProperty* property = object.getProperty(Lyr::NameTemplate);
        if (!json || json->kind == Kind::Null) {
            return !property || property->resetData();
        }
        const Step step(mPath, "NameTemplate");
        const char* text = nullptr;
        if (!textOf(*json, text)) {
            return false;
        }
        return (property ? readText(*json, *property) : object.setNameTemplate(text)) || refused(*json);
    }

    bool reset(const LyrJsonValue& json, LyrProperty& property) {
        return property.resetData() ||
               fail(json, "the default of \"" + lyrPropertyKey(property.getPropertyID()) + "\" could not be applied");
    }

    // Values

    /** In a file of a higher version, a value that is not understood is replaced by the default. */
    bool readOrReplace(const LyrJsonValue& json, LyrProperty& property) {
        const Step step(mPath, lyrPropertyKey(property.getPropertyID()));
        if (readValue(json, property)) {
            return true;
        }
        if (!mReport.newerVersion || mIsHopeless) {
            return false;
        }
        mReport.warnings.push_back(LyrString(mFailure + "; the default is taken"));
        return reset(json, property);
    }

    bool refused(const LyrJsonValue& json) { return fail(json, "the value is not allowed here"); }

    // The value type of a single value or a link tells its interface, which is never null then.
    bool readValue(const LyrJsonValue& json, LyrProperty& property) {
        const LyrValueType type = property.getValueType();
        if (property.isArray()) {
            return readArray(json, property);
        }
        switch (type) {
            case LyrValueType::Link:
                return readLink(json, property);
            case LyrValueType::String:
                return readText(json, property);
            case LyrValueType::Boolean:
                return readBoolean(json, property);
            default:
                return lyrVisitPlainType(type, [&](auto tag) { return readSingle(tag, json, property); });
        }
    }

    template <class Tag>
    bool readSingle(Tag, const LyrJsonValue& json, LyrProperty& property) {
        using T = typename Tag::type;
        T value{};
        if (!decodeItem(json, value)) {
            return false;
        }
        auto* typed = LyrSingleValuePropertyIF<T>::getInterface(&property);
        return typed->setValue(value) || refused(json);
    }

    bool readBoolean(const LyrJsonValue& json, LyrProperty& property) {
        if (json.kind != Kind::True && json.kind != Kind::False) {
            return fail(json, "true or false is needed");
        }
        auto* typed = LyrSingleValuePropertyIF<Lyrenum>::getInterface(&property);
        return typed->setValue(json.kind == Kind::True ? 1 : 0) || refused(json);
    }

    bool textOf(const LyrJsonValue& json, const char*& text) {
        if (json.kind != Kind::String && json.kind != Kind::Null) {
            return fail(json, "a text is needed, or null");
        }
        if (json.text.find('\0') != std::string::npos) {
            return fail(json, "a text may not hold the character 0");
        }
        text = json.kind == Kind::Null ? nullptr : json.text.c_str();
        return true;
    }

    bool readText(const LyrJsonValue& json, LyrProperty& property) {
        const char* text = nullptr;
        if (!textOf(json, text)) {
            return false;
        }
        auto* typed = LyrSingleValuePropertyIF<const char*>::getInterface(&property);
        return typed->setValue(text) || refused(json);
    }

    /** Reads a number, or an array of as many numbers as the type has. */
    template <class T>
    bool decodeItem(const LyrJsonValue& json, T& value) {
        const auto parts = lyrComponents(value);
        std::string reason;
        if constexpr (parts.size() == 1) {
            return lyrDecode(json, *parts[0], reason) || fail(json, reason);
        } else {
            if (json.kind != Kind::Array || json.items.size() != parts.size()) {
                return fail(json, "an array of " + std::to_string(parts.size()) + " is needed");
            }
            for (std::size_t i = 0; i < parts.size(); ++i) {
                const Step step(mPath, i);
                if (!lyrDecode(json.items[i], *parts[i], reason)) {
                    return fail(json.items[i], reason);
                }
            }
            return true;
        }
    }

    bool readArray(const LyrJsonValue& json, LyrProperty& property) {
        if (json.kind != Kind::Array) {
            return fail(json, "an array is needed");
        }
        if (property.getValueType() == LyrValueType::Link) {
            return readLinks(json, property);
        }
        return lyrVisitPlainType(property.getValueType(), [&](auto tag) { return readItems(tag, json, property); });
    }

    template <class Tag>
    bool readItems(Tag, const LyrJsonValue& json, LyrProperty& property) {
        using T = typename Tag::type;
        auto* list = LyrValueArrayPropertyIF<T>::getInterface(&property);
        std::vector<T> items(json.items.size());
        for (std::size_t i = 0; i < items.size(); ++i) {
            const Step step(mPath, i);
            if (!decodeItem(json.items[i], items[i])) {
                return false;
            }
            if constexpr (std::is_same_v<T, float>) {
                if (list && !list->allowsNonFinite() && !std::isfinite(items[i])) {
                    return fail(json.items[i], "the number must be finite");
                }
            }
        }
        return (list && list->initArray(0, static_cast<long long>(items.size()) - 1, items.data())) || refused(json);
    }

    bool readLink(const LyrJsonValue& json, LyrProperty& property) {
        LyrObjectPtr target;
        if (json.kind != Kind::Null && !readObject(json, nullptr, target)) {
            return false;
        }
        auto* typed = LyrSingleLinkIF::getInterface(&property);
        return typed->setValue(LyrObjectLink(target.get(), nullptr, -1)) || refused(json);
    }

    bool readLinks(const LyrJsonValue& json, LyrProperty& property) {
        std::vector<LyrObjectPtr> targets(json.items.size());
        std::vector<LyrObjectLink> links(json.items.size());
        for (std::size_t i = 0; i < targets.size(); ++i) {
            const Step step(mPath, i);
            if (json.items[i].kind != Kind::Null && !readObject(json.items[i], nullptr, targets[i])) {
                return false;
            }
            links[i] = LyrObjectLink(targets[i].get(), nullptr, -1);
        }
        auto* list = LyrLinkListIF::getInterface(&property);
        return list->initArray(0, static_cast<long long>(links.size()) - 1, links.data()) || refused(json);
    }

    const LyrObjectRequest& mRequest;
    LyrObjectFile::Report& mReport;
    std::string mPath;
    std::string mFailure;
    std::size_t mObjects = 0;
    bool mIsHopeless = false;
};

}  // namespace

int lyrVersionOf(const LyrJsonValue& root) {
    const LyrJsonValue* format = root.find("format");
    const LyrJsonValue* version = root.find("version");
    if (!format || format->text != LyrObjectFormat::FORMAT || !version || version->kind != Kind::Number) {
        return 0;
    }
    const char* end = version->text.data() + version->text.size();
    int number = 0;
    const auto result = std::from_chars(version->text.data(), end, number);
    if (result.ec == std::errc::result_out_of_range && version->text[0] != '-') {
        return std::numeric_limits<int>::max();
    }
    return result.ec == std::errc() && result.ptr == end ? number : 0;
}

bool lyrObjectFromJson(const LyrJsonValue& root, const LyrObjectRequest& request, LyrObjectPtr& out,
                       LyrObjectFile::Report& report) {
    return Reader(request, report).readRoot(root, out);
}

void lyrPrepareOwnedRoles(const LyrObject& object, std::size_t depth) {
    for (std::int64_t i = 0; i < object.getPropertyCount() && depth < LyrJsonValue::MAXIMUM_DEPTH; ++i) {
        const LyrProperty& property = *object.getPropertyAt(i);
        if (!lyrOwnsLinks(property)) {
            continue;
        }
        std::vector<LyrObjectPtr> owned;
        if (const auto* single = dynamic_cast<const LyrSingleLinkOP*>(&property)) {
            owned.emplace_back(single->getTarget());
        } else {
            for (const LyrObjectLink& link : static_cast<const LyrLinkListOP&>(property).view()) {
                owned.emplace_back(link.getLink());
            }
        }
        for (const LyrObjectPtr& child : owned) {
            if (child) {
                child->prepareRoles();
                lyrPrepareOwnedRoles(*child, depth + 1);
            }
        }
    }
}
