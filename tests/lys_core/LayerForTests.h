#pragma once

#include <lyr_core/LyrMetaClass.h>
#include <lys_core/LyqLayer.h>

/** The least that a layer can be. */
class LayerForTests : public LyqLayer {
public:
    explicit LayerForTests(bool colored = false, LyrObject* object = nullptr)
        : LyqLayer(object, "NoSuchPlugin"), mColored(colored) {}

    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("LayerForTests", sizeof(LayerForTests), &LyqLayer::metaClass(), nullptr,
                                       "test_layers", 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
    QString title() const override { return QString("test"); }
    bool isColored() const override { return mColored; }

private:
    bool mColored;
};
