#include <lyr_core/LyrAction.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_opengl/LyrRenderPlugin.h>
#include <lyr_opengl/LyrSliceDriver.h>
#include <lyr_opengl/LyrViewportObjectNode.h>
#include <lyr_volume/LyrVolumeObject.h>
#include <lys_core/LyqUnitConverter.h>
#include <workbench/LyrGreyLayer.h>

#include <QCoreApplication>

#include <cmath>
#include <vector>

namespace {

constexpr const char* MODULE = "workbench";

/** Draws the slices of a LyrGreyLayer, the object of its node. */
class GreySliceDriver : public LyrRendering::SliceDriver {
public:
    GreySliceDriver(LyrSceneGraph::ViewportObjectNode* node, const LyrGreyLayer& layer)
        : SliceDriver(node), mLayer(layer) {}

    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("GreySliceDriver", sizeof(GreySliceDriver), &Driver::metaClass(), nullptr,
                                       MODULE, 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }

protected:
    LyrTimestamp getSliceTimestamp() const override { return mLayer.getModificationTimestamp(); }

    bool fetchSlice(int axis, int index, LyrRendering::SliceImage& out) override {
        const LyrVolume& volume = *mLayer.document().volume();
        const auto across = static_cast<LyrVolume::Axis>(axis);
        if (index < 0 || index >= volume.sliceCount(across)) {
            return false;
        }
        const std::int64_t width = volume.sliceWidth(across);
        const std::int64_t height = volume.sliceHeight(across);
        if (axis != mAxis || index != mIndex) {
            mValues.resize(static_cast<std::size_t>(width * height));
            volume.slice(across, index, mValues);
            mAxis = axis;
            mIndex = index;
        }
        const LyrVector3<float> extent = mLayer.document().extent();
        out.width = static_cast<int>(width);
        out.height = static_cast<int>(height);
        out.min = {0.0f, 0.0f};
        out.max = {axis == 0 ? extent.y : extent.x, axis == 2 ? extent.y : extent.z};
        out.pixels.resize(mValues.size() * 4);
        const auto alpha = static_cast<std::uint8_t>(mLayer.getOpacity() * 255.0f);
        for (std::size_t i = 0; i < mValues.size(); ++i) {
            const std::uint8_t grey = mLayer.grey(mValues[i]);
            out.pixels[4 * i] = out.pixels[4 * i + 1] = out.pixels[4 * i + 2] = grey;
            out.pixels[4 * i + 3] = alpha;
        }
        return true;
    }

private:
    const LyrGreyLayer& mLayer;
    std::vector<float> mValues;
    int mAxis = -1;
    int mIndex = -1;
};

class LyrGreyRenderPlugin : public LyrRenderPlugin {
public:
    LyrGreyRenderPlugin() { addAction(Lyr::DriverInit, &mDriverInit); }

    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("LyrGreyRenderPlugin", sizeof(LyrGreyRenderPlugin),
                                       &LyrRenderPlugin::metaClass(), new LyrClassFactory<LyrGreyRenderPlugin>, MODULE,
                                       0, nullptr, 0, 0, 0, true);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }

private:
    class DriverInitAction : public LyrActionAttr {
    public:
        DriverInitAction() : LyrActionAttr(0, 0) {}
        void check() override {
            if (layer()) {
                ok(Lyr::Success);
            } else {
                error(Lyr::WrongType);
            }
        }
        void execute() override {
            node()->appendRenderingDriver(new GreySliceDriver(node(), *layer()));
            ok(Lyr::Success);
        }

    private:
        LyrSceneGraph::ViewportObjectNode* node() const {
            return dynamic_cast<LyrSceneGraph::ViewportObjectNode*>(getParameter());
        }
        LyrGreyLayer* layer() const { return node() ? dynamic_cast<LyrGreyLayer*>(node()->getObject()) : nullptr; }
    };

    DriverInitAction mDriverInit;
};

/** The class has to be known before a layer asks for it by name. */
const char* pluginName() {
    return LyrGreyRenderPlugin::metaClass().getClassName();
}

}  // namespace

LyrGreyLayer::LyrGreyLayer(LyrVolumeObject* document) : LyqLayer(document, pluginName()) {
    // Its own identifier would say no more: the window is the range of the values that are told apart.
    addProperty(Lyr::Size, &mWindow);
    const LyrVolume::ValueRange& range = document->volume()->valueRange();
    if (!setWindow(range.low, range.high)) {
        const float middle = range.isEmpty() ? 0.0f : range.low;
        setWindow(middle - 0.5f, middle + 0.5f);
    }
}

LyrGreyLayer::~LyrGreyLayer() = default;

const LyrMetaClass& LyrGreyLayer::metaClass() {
    static const LyrMetaClass meta("LyrGreyLayer", sizeof(LyrGreyLayer), &LyqLayer::metaClass(), nullptr, MODULE, 0,
                                   nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyrGreyLayer::getMetaClass() const {
    return metaClass();
}

QString LyrGreyLayer::title() const {
    return QCoreApplication::translate("LyrGreyLayer", "Gray values");
}

const LyrVolumeObject& LyrGreyLayer::document() const {
    return static_cast<const LyrVolumeObject&>(*shownObject());
}

bool LyrGreyLayer::setWindow(float low, float high) {
    return std::isfinite(low) && std::isfinite(high) && low < high && mWindow.setValue({low, high});
}

unsigned char LyrGreyLayer::grey(float value) const {
    const double part =
        (static_cast<double>(value) - static_cast<double>(low())) / (static_cast<double>(high()) - low()) * 255.0;
    const double above = part > 0.0 ? part : 0.0;  // a NaN becomes 0
    return static_cast<unsigned char>(above < 255.0 ? above : 255.0);
}

bool LyrGreyLayer::readout(const LyrVector3<float>& position, Readout& out) const {
    float value = 0.0f;
    if (!document().sampleAt(position, value)) {
        return false;
    }
    const LyqUnitConverter converter(Lyr::Number);
    out.text = converter.internalToDisplayString(static_cast<double>(value), LyqUnitConverter::WithUnit);
    out.color = LyrRGBA<float>::GRAY(static_cast<float>(grey(value)) / 255.0f);
    out.hasColor = true;
    return true;
}
