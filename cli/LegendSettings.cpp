#include "LegendSettings.h"

#include "Failure.h"
#include "Messages.h"
#include "Numbers.h"

#include <colortable/ColortableIdentifiers.h>
#include <colortable/legend/LegendPicture.h>
#include <lyr_core/LyrObjectFile.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrRGBA.h>

#include <QUtf8StringView>

#include <optional>

namespace lys::cli {

namespace {

constexpr const char* SETTINGS_CLASS = "LyrColorLookupTableRenderSettings";

LyrObjectPtr loadSettings(const std::string& path) {
    LyrObjectPtr settings;
    LyrObjectFile::Report report;
    if (!LyrObjectFile::load(path, settings, report, {SETTINGS_CLASS}, Lyr::TransientScope)) {
        throwUnusable(report.message.utf8());
    }
    if (!report.message.isEmpty()) {
        warn(report.message.utf8());
    }
    for (const LyrString& warning : report.warnings) {
        warn(warning.utf8());
    }
    return settings;
}

LyrObjectPtr makeSettings() {
    const LyrObjectRefPtr settings(SETTINGS_CLASS, Lyr::TransientScope);
    if (!settings) {
        throwFailed("the render settings could not be made; there is not enough memory");
    }
    return settings;
}

std::optional<LyrRGBA<float>> parseColor(const std::string& text) {
    const std::vector<std::string_view> parts = splitText(text, ',');
    float channels[4] = {0.0f, 0.0f, 0.0f, 1.0f};
    if (parts.size() != 3 && parts.size() != 4) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const std::optional<float> channel = parseFloat(parts[i]);
        if (!channel) {
            return std::nullopt;
        }
        channels[i] = *channel;
    }
    return LyrRGBA<float>(channels[0], channels[1], channels[2], channels[3]);
}

template <class T>
bool write(LyrObject& settings, Lyrenum id, const std::optional<T>& value) {
    return value && lyrSetValue<T>(&settings, id, *value);
}

std::optional<Lyrenum> parseBoolean(const std::string& text) {
    if (text == "true" || text == "false") {
        return Lyrenum(text == "true" ? 1 : 0);
    }
    return std::nullopt;
}

std::optional<Lyrenum> parseIdentifier(const std::string& text) {
    const int number = LyrIdentifierRegistry::find(text.c_str());
    return number == -1 ? std::nullopt : std::optional(Lyrenum(number));
}

std::optional<long long> parseInteger(const std::string& text) {
    const bool negative = text.starts_with('-');
    const std::optional<std::int64_t> count = parseCount(std::string_view(text).substr(negative ? 1 : 0));
    return count ? std::optional<long long>(negative ? -*count : *count) : std::nullopt;
}

/** Writes a value in the form that its property has. */
bool replaceValue(LyrObject& settings, LyrProperty& property, const std::string& text) {
    const Lyrenum id = property.getPropertyID();
    switch (property.getValueType()) {
        case LyrValueType::Boolean:
            return write(settings, id, parseBoolean(text));
        case LyrValueType::Enum:
            return write(settings, id, parseIdentifier(text));
        case LyrValueType::Float:
            return write(settings, id, parseFloat(text));
        case LyrValueType::Int64:
            return write(settings, id, parseInteger(text));
        case LyrValueType::Color:
            return write(settings, id, parseColor(text));
        case LyrValueType::String:
            return lyrSetValue<const char*>(&settings, id, text.c_str());
        default:
            return false;
    }
}

void replace(LyrObject& settings, const std::string& assignment) {
    const std::size_t equals = assignment.find('=');
    const std::string name = assignment.substr(0, equals);
    const int id = LyrIdentifierRegistry::find(name.c_str());
    LyrProperty* property = equals == std::string::npos || id == -1 ? nullptr : settings.getProperty(id);
    if (!property || !property->isStored()) {
        throwUnusable("--set " + assignment + ": render settings have no property \"" + name +
                      "\"; give NAME=VALUE such as Position=Bottom");
    }
    const std::string value = assignment.substr(equals + 1);
    if (!QUtf8StringView(value.data(), qsizetype(value.size())).isValidUtf8()) {
        throwUnusable("--set " + name + ": the value is not valid UTF-8 text; type it anew");
    }
    if (!replaceValue(settings, *property, value)) {
        throwUnusable("--set " + assignment + ": the property does not take this value");
    }
}

}  // namespace

namespace {

/** Says what of the settings cannot be shown as it is written, and what is shown instead. */
void warnOfFallbacks(const LyrObject& settings) {
    const std::string font = lyrGetValue<const char*>(&settings, Lyr::Font, "");
    bool valid = true;
    lys::legend::fontFromString(QString::fromStdString(font), &valid);
    if (!valid && !font.empty() && font != "Default") {
        warn("Font \"" + font + "\" is no font description; the default font is used");
    }
    const long long thickness = lyrGetValue<long long>(&settings, Lyr::Thickness, 0);
    if (thickness < 0 || thickness > lys::legend::LARGEST_THICKNESS) {
        warn("Thickness " + std::to_string(thickness) + " is outside of 0 to " +
             std::to_string(lys::legend::LARGEST_THICKNESS) + "; the nearest of them is used");
    }
}

}  // namespace

LyrObjectPtr readLegendSettings(const std::string& path, const std::vector<std::string>& replacements) {
    LyrObjectPtr settings = path.empty() ? makeSettings() : loadSettings(path);
    for (const std::string& assignment : replacements) {
        replace(*settings, assignment);
    }
    warnOfFallbacks(*settings);
    return settings;
}

}  // namespace lys::cli
