#pragma once

#include <ToolkitApplication.h>
#include <analysis/LyrValueLayer.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_volume/LyrVolumeObject.h>

#include <memory>
#include <vector>

/** A volume of 4 × 3 × 2 voxels of 1 mm with the samples 0, 1, 2 … 23 times a factor. */
inline std::shared_ptr<const LyrVolume> countingVolume(float factor = 1.0f) {
    LyrVolume::Description description;
    description.size = {4, 3, 2};
    std::vector<float> samples;
    for (int i = 0; i < 24; ++i) {
        samples.push_back(float(i) * factor);
    }
    return LyrVolume::create(description, std::move(samples));
}

/** A document with a layer of its values. */
struct LayerOfValues : ToolkitApplication {
    explicit LayerOfValues(const std::shared_ptr<const LyrVolume>& volume = countingVolume())
        : document(new LyrVolumeObject(volume, "counting", "counting")),
          object(LyrValueLayer::create(static_cast<LyrVolumeObject*>(document.get()))) {}

    LyrValueLayer& layer() const { return static_cast<LyrValueLayer&>(*object); }

    LyrObjectPtr document;
    LyrObjectPtr object;
};
