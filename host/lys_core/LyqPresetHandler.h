#pragma once

#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrString.h>
#include <lyr_core/LyrStringList.h>
#include <lys_core/LyqPresetRegistry.h>
#include <lys_core/LysCoreExport.h>

#include <QPixmap>

#include <memory>

class LyqPresetNotifier;
class QWidget;

/** The presets of one category: turns the object that is being edited, the application object, into presets and back,
 * and keeps track of the preset that was applied or saved last.
 *
 *  Presets are of three kinds: Lyr::DefaultPreset (built in), Lyr::InstalledPreset (files that come with the programs)
 * and Lyr::UserPreset. A handler is one of its kind: it is not copied. */
class LYS_CORE_EXPORT LyqPresetHandler : public LyrObject, public LyqPresetRegistry::Receiver {
public:
    /** @param category  identifier of the category, -1 for one to be set later
     *  @param name      the handler's name */
    LyqPresetHandler(Lyrenum category, const LyrString& name);
    ~LyqPresetHandler() override;
    LyqPresetHandler(const LyqPresetHandler&) = delete;
    LyqPresetHandler& operator=(const LyqPresetHandler&) = delete;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;
    /** Refused: handlers are not copied. */
    bool copyFrom(const LyrObject& other) override;

    Lyrenum getCategory() const { return mCategory; }
    void setCategory(Lyrenum category) { mCategory = category; }
    const LyrString& getName() const { return mName; }
    void setName(const LyrString& name) { mName = name; }

    /** The object that is being edited, null if there is none. The handler does not keep it alive. */
    LyrObject* getApplicationObject() const;
    /** Another object has no current preset. */
    void setApplicationObject(LyrObject* object);
    /** The same, as editors say it. */
    void setCurrentObject(LyrObject* object) override { setApplicationObject(object); }

    /** The preset that was applied to, or saved from, the application object last; a null name if there is none. */
    const LyrString& getCurrentPreset() const { return mCurrent; }
    Lyrenum getCurrentPresetKind() const { return mCurrentKind; }
    void setCurrentPreset(const LyrString& name, Lyrenum kind);
    /** Whether the application object has been changed since. */
    bool isCurrentPresetModified() const { return mModified; }
    void setCurrentPresetModified(bool modified);

    /** Names of the presets of a kind. False if they cannot be told. */
    bool listPresets(LyrStringList& list, Lyrenum kind);
    /** The first kind, of user's, installed and built-in presets in this order, that has a preset of this name; -1 if
     * none has. A message if one of the kinds before could not be listed. */
    Lyrenum findPreset(const LyrString& name);
    /** Applies a preset to the application object, as one undo step named after it that brings back all of the object's
     * stored properties. On failure the object is as before. */
    bool applyPreset(const LyrString& name, Lyrenum kind);
    /** Saves the application object as a preset, which is the current one then. Without `replace`, the name must be
     * free. On failure an earlier preset of this
     * name is as before, and the modified marker stays. */
    bool savePresetAs(const LyrString& name, Lyrenum kind = Lyr::UserPreset, bool replace = true);
    /** Whether the last saving or taking in failed for nothing but a preset that has the name already. */
    virtual bool isNameTaken() { return false; }

    /** What there is to say about the last operation: why it failed, or what a person should know of it. Null if
     * nothing. */
    const LyrString& getMessage() const { return mMessage; }

    /** What a person reads for a preset. */
    virtual LyrString getPresetText(const LyrString& name, Lyrenum kind);
    /** A picture of a preset, null if there is none. */
    virtual QPixmap getPresetPixmap(const LyrString& name, Lyrenum kind);
    /** What the presets are of, for titles: "Colortable". */
    LyrString describe() { return getDescription(); }
    /** What the save dialog shows under its own fields, for the dialog to own; null if nothing. */
    QWidget* makeSaveDialogExtension() { return createSaveDialogExtension(); }

    LyqPresetNotifier& notifier() const { return *mNotifier; }

protected:
    /** Marks the current preset as modified where a derived class says so; the base only passes the message on. */
    bool iocCallback(Message& message) override;

    virtual bool getPresetList(LyrStringList& list, Lyrenum kind) = 0;
    /** Saves the application object. */
    virtual bool appToPreset(const LyrString& name, Lyrenum kind) = 0;
    /** Applies a preset to the application object. */
    virtual bool presetToApp(const LyrString& name, Lyrenum kind) = 0;
    virtual LyrString getDescription() = 0;
    virtual QWidget* createSaveDialogExtension();

    /** Whether what is being saved may take the place of a preset of its name. */
    bool mayReplace() const { return mMayReplace; }
    void setMessage(const LyrString& message) { mMessage = message; }

private:
    bool applyInAction(const LyrString& name, Lyrenum kind, LyrObject& object);

    LyrObjectSoftLinkOP mApplicationObject;
    Lyrenum mCategory;
    LyrString mName;
    LyrString mCurrent;
    Lyrenum mCurrentKind;
    bool mModified = false;
    bool mMayReplace = true;
    LyrString mMessage;
    std::unique_ptr<LyqPresetNotifier> mNotifier;
};
