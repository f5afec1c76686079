#pragma once

#include <lyr_core/LyrObjectPtr.h>
#include <lys_core/LyqExtension.h>

class LyqLayer;

/** A way to show an opened document: makes a layer of it. */
class LYS_CORE_EXPORT LyqLayerExtension : public LyqExtension {
public:
    using LyqExtension::LyqExtension;
    ~LyqLayerExtension() override;

    virtual bool accepts(const LyrObject* document) const = 0;
    /** Whether a document is shown this way as soon as it is opened. */
    virtual bool isShownAtFirst() const;
    /** A new layer (a LyqLayer) for the document. Null, and a message for users, if it cannot be made. */
    virtual LyrObjectPtr createLayer(LyrObject* document, QString& message) = 0;
};
