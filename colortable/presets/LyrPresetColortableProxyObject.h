#pragma once

#include <colortable/LysColortableExport.h>
#include <lyr_core/LyrObject.h>

#include <memory>

/** What is saved as a preset of a colour lookup table: the table (`ColorLookupTable`, owned), the value range of the
 * data that it was made for (`ReferenceRange`, empty where low > high), and whether its positions are to be applied as
 * they are (`AbsoluteMode`) or are relative to that range. A new one holds a default table. */
class LYS_COLORTABLE_EXPORT LyrPresetColortableProxyObject : public LyrObject {
public:
    LyrPresetColortableProxyObject();
    LyrPresetColortableProxyObject(const LyrPresetColortableProxyObject& other);
    LyrPresetColortableProxyObject& operator=(const LyrPresetColortableProxyObject& other);
    ~LyrPresetColortableProxyObject() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    bool copyFrom(const LyrObject& other) override;

private:
    struct Private;
    void build();

    std::unique_ptr<Private> d;
};
