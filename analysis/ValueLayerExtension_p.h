#pragma once

#include <analysis/AnalysisIdentifiers.h>
#include <analysis/LyrValueLayer.h>
#include <lyr_volume/LyrVolumeObject.h>
#include <lys_core/LyqLayerExtension.h>

#include <QCoreApplication>

/** Offers LyrValueLayer for opened volumes. */
class ValueLayerExtension : public LyqLayerExtension {
    Q_DECLARE_TR_FUNCTIONS(ValueLayerExtension)

public:
    ValueLayerExtension()
        : LyqLayerExtension(QString::fromUtf8("values"), tr("Values in color"), LYS_ANALYSIS_MODULE) {}

    bool accepts(const LyrObject* document) const override {
        return dynamic_cast<const LyrVolumeObject*>(document) != nullptr;
    }
    LyrObjectPtr createLayer(LyrObject* document, QString& message) override {
        auto* volume = dynamic_cast<LyrVolumeObject*>(document);
        LyrObjectPtr layer(volume ? LyrValueLayer::create(volume) : nullptr);
        if (!layer) {
            message = tr("The values cannot be shown in color: memory ran out.");
        }
        return layer;
    }
};
