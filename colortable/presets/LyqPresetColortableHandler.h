#pragma once

#include <colortable/LysColortableExport.h>
#include <lyr_core/LyrInterval.h>
#include <lys_core/LyqPresetDefaultHandler.h>

#include <memory>

/** Presets of colour lookup tables. A preset keeps the table with the value range that it was made for. An absolute one
 * is applied with its positions as they are; a relative one is meant to be stretched onto the range of the data, which
 * is left to derived classes: they override getCurrentReferenceRange() and adjustLookupTable(). */
class LYS_COLORTABLE_EXPORT LyqPresetColortableHandler : public LyqPresetDefaultHandler {
public:
    LyqPresetColortableHandler(Lyrenum category, const LyrString& name);
    ~LyqPresetColortableHandler() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    /** Whether the next save makes an absolute preset. Follows the preset that was loaded last. */
    bool isAbsolutePreset() const { return mAbsolutePreset; }
    void setAbsolutePreset(bool absolute) { mAbsolutePreset = absolute; }

    /** Built-in presets have translated names. */
    LyrString getPresetText(const LyrString& name, Lyrenum kind) override;
    QPixmap getPresetPixmap(const LyrString& name, Lyrenum kind) override;

protected:
    /** A change of a property of the table with the flag LyrFlags::PRESET marks the current preset as modified. */
    bool iocCallback(Message& message) override;
    /** The built-in presets are "Rainbow" and "Reverse Rainbow". */
    bool getPresetList(LyrStringList& list, Lyrenum kind) override;
    bool appToPreset(const LyrString& name, Lyrenum kind) override;
    bool presetToApp(const LyrString& name, Lyrenum kind) override;
    LyrString getDescription() override;
    QWidget* createSaveDialogExtension() override;

    /** Called after a preset's table has been copied into the current one: the place for stretching a relative one from
     * `referenceRange` onto the range of the data. This class does nothing. Returns false. */
    virtual bool adjustLookupTable(bool absolute, const LyrInterval<float, float>& referenceRange);
    /** The value range of the data at hand, stored with each preset. This class knows none: the empty interval. */
    virtual LyrInterval<float, float> getCurrentReferenceRange();

private:
    struct Private;
    LyrObjectRefPtr getDefaultPresetProxy(const LyrString& name);

    std::unique_ptr<Private> d;
    bool mAbsolutePreset = false;
};
