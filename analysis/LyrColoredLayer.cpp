#include <analysis/AnalysisIdentifiers.h>
#include <analysis/LyrColoredLayer.h>
#include <analysis/PartSurface.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_volume/LyrVolumeObject.h>
#include <lys_core/LyqUnitConverter.h>

#include <QCoreApplication>
#include <QObject>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

/** Remembers when a link came to lead elsewhere. */
class LinkWatch : public LyrProperty::Extension {
public:
    void propertyHasChangedHook() override { time = LyrTimestamp::getCurrentTimestamp(); }
    LyrTimestamp time = LyrTimestamp::getCurrentTimestamp();
};

}  // namespace

struct LyrColoredLayer::Private {
    std::shared_ptr<const LyrVolume> values;
    std::shared_ptr<PartSurface> surface;
    LyrObjectHardLinkOP table;
    LyrObjectHardLinkOP settings;
    LyrSingleValueOP<LyrSingleValuePropertyIF<float>> surfaceValue;
    LinkWatch tableWatch;
    LinkWatch settingsWatch;
    QObject context;  ///< ends the line from the surface before anything else goes
};

namespace {

LyrObjectLink linkTo(LyrObject* object) {
    return {object, nullptr, -1};
}

LyrTimestamp sectionsTimestamp(const LyrObject& table) {
    LyrTimestamp latest;
    if (const LyrValueArrayOPPtr<LyrLinkListIF> sections(&table, Lyr::SectionList); sections) {
        const long long count = sections->getArraySize();
        if (const LyrObjectLink* links = sections->lockArrayPtr()) {
            for (long long i = 0; i < count; ++i) {
                if (const LyrObject* section = links[i].getLink()) {
                    latest = std::max(latest, section->getModificationTimestamp());
                }
            }
            sections->unlockArrayPtr(links);
        }
    }
    return latest;
}

}  // namespace

LyrColoredLayer::LyrColoredLayer(LyrVolumeObject* document, std::shared_ptr<const LyrVolume> values,
                                 LyrColorLookupTable* table, LyrObject* settings)
    : LyqLayer(document, "LyrAnalysisRenderPlugin"), d(std::make_unique<Private>()) {
    d->values = std::move(values);
    d->surfaceValue.setComputed(true);
    d->surfaceValue.setValue(std::numeric_limits<float>::quiet_NaN());
    addProperty(Lyr::ColorLookupTable, &d->table);
    addProperty(Lyr::ColorLookupTableRenderSettings, &d->settings);
    addProperty(Lyr::SurfaceValue, &d->surfaceValue);
    d->table.addPropertyExtension(&d->tableWatch);
    d->settings.addPropertyExtension(&d->settingsWatch);
    d->table.setValue(linkTo(table));
    d->settings.setValue(linkTo(settings));
    d->surface = PartSurface::of(document->volume());
    connectSurface();
}

LyrColoredLayer::~LyrColoredLayer() = default;

void LyrColoredLayer::connectSurface() {
    const auto take = [this] {
        if (d->surface->mesh()) {
            d->surfaceValue.setValue(d->surface->value());
        }
    };
    take();
    QObject::connect(d->surface.get(), &PartSurface::finished, &d->context, take);
}

const LyrMetaClass& LyrColoredLayer::metaClass() {
    static const LyrMetaClass meta("LyrColoredLayer", sizeof(LyrColoredLayer), &LyqLayer::metaClass(), nullptr,
                                   LYS_ANALYSIS_MODULE, 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyrColoredLayer::getMetaClass() const {
    return metaClass();
}

bool LyrColoredLayer::isComplete() const {
    return d->surface->isFinished();
}

std::vector<LyqLayer::Content> LyrColoredLayer::contents() const {
    std::vector<Content> all;
    if (LyrObject* colors = table()) {
        all.push_back({colors, QCoreApplication::translate("LyrColoredLayer", "Color Table"), "colors.json"});
    }
    if (LyrObject* legend = renderSettings()) {
        all.push_back({legend, QCoreApplication::translate("LyrColoredLayer", "Legend Settings"), "legend.json"});
    }
    return all;
}

const std::shared_ptr<const LyrVolume>& LyrColoredLayer::values() const {
    return d->values;
}

const LyrVolumeObject& LyrColoredLayer::document() const {
    return static_cast<const LyrVolumeObject&>(*shownObject());
}

LyrColorLookupTable* LyrColoredLayer::table() const {
    return dynamic_cast<LyrColorLookupTable*>(d->table.getTarget());
}

LyrObject* LyrColoredLayer::renderSettings() const {
    return d->settings.getTarget();
}

const PartSurface& LyrColoredLayer::surface() const {
    return *d->surface;
}

LyrTimestamp LyrColoredLayer::getTableTimestamp() const {
    const LyrObject* linked = d->table.getTarget();
    return linked ? std::max({d->tableWatch.time, linked->getModificationTimestamp(), sectionsTimestamp(*linked)})
                  : d->tableWatch.time;
}

LyrTimestamp LyrColoredLayer::getSettingsTimestamp() const {
    const LyrObject* linked = d->settings.getTarget();
    return linked ? std::max(d->settingsWatch.time, linked->getModificationTimestamp()) : d->settingsWatch.time;
}

bool LyrColoredLayer::readout(const LyrVector3<float>& position, Readout& out) const {
    LyrVolume::Size voxel{};
    if (!document().voxelAt(position, voxel)) {
        return false;
    }
    const float value = d->values->at(voxel[0], voxel[1], voxel[2]);
    const LyrColorLookupTable* colors = table();
    const LyqUnitConverter converter(lyrGetValue<Lyrenum>(colors, Lyr::Quantity, Lyr::Number));
    out.text = converter.internalToDisplayString(static_cast<double>(value), LyqUnitConverter::WithUnit);
    out.hasColor = colors && colors->getColor(value, out.color);
    return true;
}
