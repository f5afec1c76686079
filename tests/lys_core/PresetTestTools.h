#pragma once

#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrSingleValueProperty.h>
#include <lyr_core/LyrValueArrayProperty.h>
#include <lys_core/LyqPresetDefaultHandler.h>

#include <QCheckBox>

#include <functional>
#include <string>

namespace preset_test {

/** An object with content (a number and a list), a side note that marks presets, and one that nothing marks. */
class Thing : public LyrObject {
public:
    using FloatOP = LyrSingleValueOP<LyrSingleValuePropertyIF<float>>;
    using ListOP = LyrValueArrayOP<LyrValueArrayPropertyIF<float>>;

    static constexpr int VALUE = 900000011;
    static constexpr int LIST = 900000012;
    static constexpr int NOTE = 900000013;
    static constexpr int QUIET = 900000014;

    Thing() { build(); }
    Thing(const Thing& other) : LyrObject(other) {
        build();
        copyFrom(other);
    }

    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("PresetTestThing", sizeof(Thing), &LyrObject::metaClass(),
                                       new LyrClassFactory<Thing>, "test", 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }

    FloatOP value;
    ListOP list;
    FloatOP note;
    FloatOP quiet;

private:
    void build() {
        addProperty(VALUE, &value);
        addProperty(LIST, &list);
        addProperty(NOTE, &note);
        addProperty(QUIET, &quiet);
        value.setFlags(LyrFlags::DATA, 0);
        list.setFlags(LyrFlags::DATA, 0);
        note.setFlags(LyrFlags::PRESET, 0);
        setFlags(LyrFlags::DATA, 0);
    }
};

/** A thing and a handle that keeps it. */
struct HeldThing {
    HeldThing() : thing(new Thing), handle(thing) {}
    explicit HeldThing(float value) : HeldThing() { thing->value.setValue(value); }
    Thing* operator->() const { return thing; }
    Thing& operator*() const { return *thing; }
    Thing* thing;
    LyrObjectPtr handle;
};

/** Presets of things, with one that is built in: the value 7. */
class ThingHandler : public LyqPresetDefaultHandler {
public:
    static constexpr int CATEGORY = 900000021;

    explicit ThingHandler(const std::string& userFolder, const std::string& installedFolder = "/nonexistent")
        : LyqPresetDefaultHandler(CATEGORY, LyrString("things")) {
        Thing::metaClass();
        setPresetClass("PresetTestThing");
        setPresetFolder(Lyr::UserPreset, userFolder);
        setPresetFolder(Lyr::InstalledPreset, installedFolder);
    }

    using LyqPresetDefaultHandler::loadPreset;
    using LyqPresetDefaultHandler::savePreset;

    bool failAfterCopy = false;
    bool withExtension = false;

protected:
    bool getPresetList(LyrStringList& list, Lyrenum kind) override {
        if (kind == Lyr::DefaultPreset) {
            list = {LyrString("seven")};
            return true;
        }
        return LyqPresetDefaultHandler::getPresetList(list, kind);
    }
    bool presetToApp(const LyrString& name, Lyrenum kind) override {
        if (kind == Lyr::DefaultPreset) {
            return getApplicationObject() && static_cast<Thing*>(getApplicationObject())->value.setValue(7.0f);
        }
        return LyqPresetDefaultHandler::presetToApp(name, kind) && !failAfterCopy;
    }
    bool iocCallback(Message& message) override {
        if (message.getInitialSender() == getApplicationObject() && message.getPropertyID() == Thing::NOTE) {
            setCurrentPresetModified(true);
        }
        return LyqPresetDefaultHandler::iocCallback(message);
    }
    QWidget* createSaveDialogExtension() override {
        return withExtension ? new QCheckBox(QStringLiteral("Extra")) : nullptr;
    }
};

}  // namespace preset_test
