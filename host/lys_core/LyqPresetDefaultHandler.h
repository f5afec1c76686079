#pragma once

#include <lyr_core/LyrObjectFile.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lys_core/LyqPresetHandler.h>
#include <lys_core/LyqPresetStore.h>

#include <memory>
#include <string>

/** A handler whose presets are object files: installed ones in the programs' folder, the user's own in theirs
 * (LyqPresetFolders). As it stands, a preset is a copy of the application object; derived classes put a proxy object in
 * its place. */
class LYS_CORE_EXPORT LyqPresetDefaultHandler : public LyqPresetHandler {
public:
    LyqPresetDefaultHandler(Lyrenum category, const LyrString& name);
    ~LyqPresetDefaultHandler() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    /** The store of the installed or the user's presets, null for other kinds. Made, and the user's folder swept, on
     * first use. */
    LyqPresetStore* store(Lyrenum kind);
    /** Puts a folder of the caller's in the place of the usual one. */
    void setPresetFolder(Lyrenum kind, const std::string& folder);

    // The user's presets: false, and a message, if it could not be done.
    bool renamePreset(const LyrString& from, const LyrString& to);
    bool removePreset(const LyrString& name);
    /** Takes in the file of a preset. `name` receives its name; one that is taken already is refused, unless it is to
     * be replaced. */
    bool importPreset(const std::string& path, bool replace, LyrString& name);
    /** Whether importPreset() would take a file in as things stand. */
    bool checkImport(const std::string& path, bool replace, LyrString& name);
    bool isNameTaken() override;
    /** Writes the file of an installed or user's preset to another place. */
    bool exportPreset(const LyrString& name, Lyrenum kind, const std::string& path);

protected:
    /** `className`: the class of the objects that are saved, derived ones included. Empty (the default): every class.
     */
    void setPresetClass(const std::string& className);

    bool getPresetList(LyrStringList& list, Lyrenum kind) override;
    bool appToPreset(const LyrString& name, Lyrenum kind) override;
    bool presetToApp(const LyrString& name, Lyrenum kind) override;
    LyrString getDescription() override;

    /** Makes the object of a stored preset; null, and a message, if there is none or it cannot be used. Properties
     * that the file lacks are taken out of the object, so that their absence can be told from their default. `report`
     * (may be null) receives what the file's reader has to say. */
    LyrObjectPtr loadPreset(const LyrString& name, Lyrenum kind, LyrObjectFile::Report* report);
    /** Saves an object as a preset of the user. False, and a message, if it could not be done, and for other kinds. */
    bool savePreset(const LyrObjectPtr& preset, const LyrString& name, Lyrenum kind);

private:
    struct Place {
        Lyrenum kind;
        std::string folder;
        std::unique_ptr<LyqPresetStore> store;
    };
    Place* placeOf(Lyrenum kind);
    bool refuseKind();
    void follow(const LyrString& from, const LyrString& to);

    std::string mPresetClass;
    Place mPlaces[2];
};
