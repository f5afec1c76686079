#pragma once

#include <lyr_core/LyrClass.h>
#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/Lyrenum.h>

#include <cstdint>
#include <memory>
#include <utility>

class LyrObject;

/** The kinds of value that properties hold, for code that walks them (copying, files). */
enum class LyrValueType : std::uint8_t {
    Enum,
    EnumPair,
    Boolean,  ///< read and written as an identifier 0 or 1
    Float,
    FloatPair,
    Int64,
    Vector2,
    Vector3,
    Color,
    String,
    Link
};

/** One value, or list of values, of an object. It knows its owner and identifier, never a widget.
 *
 *  A write that changes nothing (LyrSameValue.h) is silent. Any other is recorded for undo where the flags say so,
 * stamps the owner and sends Lyr::PropertyHasChanged to the owner's listeners. Before the property is added to an
 * owner, writes only store. */
class LYR_CORE_EXPORT LyrProperty : public LyrClassMember {
public:
    class Extension;

    /** A value taken out of a property, to be put back later; links in it keep their objects alive. */
    class LYR_CORE_EXPORT State {
    public:
        virtual ~State();
        /** True if a link in it leads to an object of the module. */
        virtual bool holdsObjectsOf(const char* module) const;
    };

    LyrProperty() = default;
    LyrProperty(const LyrProperty&) = delete;
    LyrProperty& operator=(const LyrProperty&) = delete;
    ~LyrProperty() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    Lyrenum getPropertyID() const noexcept { return mPropertyId; }
    /** The owner, null before the property is added to one. */
    LyrObject* getObject() const noexcept { return mOwner; }

    virtual LyrValueType getValueType() const noexcept = 0;
    virtual bool isArray() const noexcept = 0;

    /** Applies the default. */
    virtual bool resetData() = 0;

    /** Computed properties are neither stored nor copied. */
    bool isComputed() const noexcept { return mComputed; }
    void setComputed(bool on) noexcept { mComputed = on; }
    /** Writes to a read-only property are refused. */
    bool isReadOnly() const noexcept { return mReadOnly; }
    void setReadOnly(bool on) noexcept { mReadOnly = on; }
    bool isStored() const noexcept { return !mComputed && !mReadOnly; }

    /** Reports a code with the owner (or, without one, the property) as source. Returns false. */
    bool emitError(Lyrenum code) const noexcept;

    /** The present value. Null when memory ran out. */
    virtual std::unique_ptr<State> takeState() const = 0;
    /** Exchanges the value with one taken from this property: `state` then holds what was there before. Told and
     * stamped like any write; needs no memory unless it is recorded. */
    virtual bool restoreState(State& state) = 0;
    /** Takes over the value of a property of the same type. Owning link properties copy their objects. */
    virtual bool copyValueFrom(const LyrProperty& source) = 0;

    /** Puts an extension in front of those that are there. False if it is attached already, here or elsewhere. */
    bool addPropertyExtension(Extension* extension);
    bool removePropertyExtension(Extension* extension);
    void removeAllPropertyExtensions();
    Extension* firstExtension() const noexcept { return mExtensions; }

    /** True if a write now would be recorded: inside a user action, and the property carries exactly the data flags of
     * its owner, at least one. Writes to an owner that nobody holds yet, or that is dying, are not recorded: they
     * belong to its making or its end. */
    bool isRecorded() const noexcept;

protected:
    void flagsWillChange(unsigned int set, unsigned int clear) override;
    void flagsHaveChanged(unsigned int before) override;

    /** What every write does around the change: refuses a read-only property, hands the old value to the undo journal,
     * lets `change` do the work and tells of it. `change` returns bool and leaves the value alone when it fails;
     * std::bad_alloc from it is reported. */
    template <class Change>
    bool write(Change change);

    /** The property has another owner, or none, now. */
    virtual void ownerChanged();
    /** Leaves the owner; called first in the destructor of a property whose end others can notice. */
    void leaveOwner() noexcept;

    /** Stamps and tells a change that happened outside of write(). */
    void announceChange();
    void presetPropertyID(Lyrenum id) noexcept { mPropertyId = id; }

private:
    friend class LyrObject;
    class ExtensionWalk;
    template <class Call>
    bool forEachExtension(Call call);
    bool beginWrite(std::unique_ptr<State>& before);
    void endWrite(std::unique_ptr<State> before);
    bool reportFailedWrite() const noexcept;
    void setOwner(LyrObject* owner, Lyrenum id);

    LyrObject* mOwner = nullptr;
    Extension* mExtensions = nullptr;
    Lyrenum mPropertyId;
    bool mComputed = false;
    bool mReadOnly = false;
    bool mOwnedByObject = false;
};

/** Attaches to a property and hears of its changes; typed extensions also see or replace its reads and writes. */
class LYR_CORE_EXPORT LyrProperty::Extension : public LyrClassMember {
public:
    ~Extension() override;

    LyrProperty* getProperty() const noexcept { return mProperty; }
    /** With auto-delete on, the extension is deleted when it is removed or its property goes. */
    void setAutoDelete(bool on) noexcept { mAutoDelete = on; }
    bool isAutoDelete() const noexcept { return mAutoDelete; }
    /** The value type that a typed extension reads and writes, -1 for one that only listens. */
    virtual int getExtensionValueType() const noexcept { return -1; }
    /** The extension behind this one, null if it is the last. */
    Extension* nextExtension() const noexcept { return mNext; }

    /** Tells the listeners of the property's owner that its value is another now. */
    void announceChange();

    virtual void propertyExtensionAddHook(LyrProperty* property);
    virtual void propertyExtensionRemoveHook(LyrProperty* property);
    virtual void propertyHasChangedHook();
    virtual void propertyFlagsWillChange(unsigned int set, unsigned int clear);
    virtual void propertyFlagsHaveChanged(unsigned int before);

private:
    friend class LyrProperty;
    LyrProperty* mProperty = nullptr;
    Extension* mNext = nullptr;
    bool mAutoDelete = false;
};

template <class Change>
bool LyrProperty::write(Change change) {
    std::unique_ptr<State> before;
    try {
        if (!beginWrite(before) || !change()) {
            return false;
        }
    } catch (...) {
        return reportFailedWrite();
    }
    endWrite(std::move(before));
    return true;
}
