#include <lys_core/LyqLayerExtension.h>

LyqLayerExtension::~LyqLayerExtension() = default;

bool LyqLayerExtension::isShownAtFirst() const {
    return true;
}
