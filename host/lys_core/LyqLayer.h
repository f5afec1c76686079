#pragma once

#include <lyr_core/LyrBooleanOP.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrRGBA.h>
#include <lyr_core/LyrVector3.h>
#include <lys_core/LysCoreExport.h>

#include <QString>

#include <vector>

/** What views draw one over the other: a volume in grey, its values in colour, a result. An object of the host's graph
 * that cameras list among their rendered objects.
 *
 *  Properties: `Rendering` (on or off, on at first), `Opacity` (0 to 1, 1 at first), `RenderPlugin` (link to the
 *  LyrRenderPlugin that gives each view a driver for the layer), `Object` (link to what the layer shows; views put it
 *  into their scene tree below the layer, and a shown layer keeps it alive). */
class LYS_CORE_EXPORT LyqLayer : public LyrObject {
public:
    /** What a layer says of one place. */
    struct Readout {
        QString text;            ///< the value with its unit, for people
        LyrRGBA<float> color{};  ///< the colour that the layer shows there
        bool hasColor = false;
    };

    /** An object of a layer that users edit, and keep in a file of its own. */
    struct Content {
        LyrObject* object;  ///< not null
        QString title;      ///< for menus and messages, translated: "Color Table"
        QString fileName;   ///< proposed for a file, with its ending: "colors.json"
        /** Of the handler (LyqPresetRegistry) whose presets fit the object; -1: none. */
        Lyrenum presetCategory{-1};
    };

    ~LyqLayer() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    /** What users call the layer, translated. */
    virtual QString title() const = 0;
    /** What lies at a place of the world (mm). False if the layer has nothing there. */
    virtual bool readout(const LyrVector3<float>& position, Readout& out) const;
    /** Whether the layer is coloured through a table, and has a legend and editors that act on it. */
    virtual bool isColored() const;

    /** What of the layer users edit and keep: a change of a property of these objects, or of one that they own, marks
     * the document as modified where the property carries LyrFlags::PRESET. The layer owns them. */
    virtual std::vector<Content> contents() const;

    /** False while something that the layer shows is still being worked out. */
    virtual bool isComplete() const;

    bool isRendering() const;
    bool setRendering(bool on);
    float getOpacity() const;
    /** Clamped to 0 … 1; false for NaN. */
    bool setOpacity(float opacity);
    LyrObject* shownObject() const { return mObject.getTarget(); }

protected:
    /** @param object        what the layer shows, may be null
     *  @param renderPlugin  class name of the layer's render plug-in */
    LyqLayer(LyrObject* object, const char* renderPlugin);

private:
    /** On at first, and after a reset. */
    class RenderingAttr : public LyrBooleanOP {
    public:
        RenderingAttr();
    };
    class OpacityAttr : public LyrSingleValueOP<LyrSingleValuePropertyIF<float>> {
    public:
        OpacityAttr();
    };

    RenderingAttr mRendering;
    OpacityAttr mOpacity;
    LyrObjectHardLinkOP mRenderPlugin;
    LyrObjectHardLinkOP mObject;
};
