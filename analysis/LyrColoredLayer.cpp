#include <analysis/AnalysisIdentifiers.h>
#include <analysis/LyrColoredLayer.h>
#include <analysis/PartSurface.h>
#include <analysis/ValueOrder.h>
#include <analysis/compute/LyrValueHistogram.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_volume/LyrVolumeObject.h>
#include <lys_core/LyqBackgroundJob.h>
#include <lys_core/LyqUnitConverter.h>

#include <QCoreApplication>
#include <QObject>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace {

/** Vertices between two looks whether the layer is still wanted. */
constexpr std::size_t VERTICES_AT_ONCE = 16384;

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
    std::shared_ptr<ValueOrder> order;  ///< null until somebody asks for it
    LyrObjectHardLinkOP table;
    LyrObjectHardLinkOP settings;
    LyrSingleValueOP<LyrSingleValuePropertyIF<float>> surfaceValue;
    LyrSingleValueOP<LyrSingleValuePropertyIF<long long>> highlighted;
    LyrTimestamp highlightedAt;
    std::shared_ptr<const std::vector<float>> surfaceValues;  ///< null until they are worked out
    std::unique_ptr<LyqBackgroundJob> surfaceJob;
    LinkWatch tableWatch;
    LinkWatch settingsWatch;
    QObject context;  ///< ends the line from the surface before anything else goes
};

namespace {

/** The sample at a place between the centres of voxels, weighted linearly; beyond the border the nearest counts. */
float sampleBetween(const LyrVolume& volume, const float* position) {
    std::array<std::int64_t, 3> base{};
    std::array<float, 3> part{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double last = static_cast<double>(volume.size()[axis] - 1);
        const double index = std::clamp(static_cast<double>(position[axis]) / volume.spacing()[axis] - 0.5, 0.0, last);
        base[axis] = std::min(static_cast<std::int64_t>(index), std::max<std::int64_t>(volume.size()[axis] - 2, 0));
        part[axis] = static_cast<float>(index - static_cast<double>(base[axis]));
    }
    const auto at = [&](std::int64_t x, std::int64_t y, std::int64_t z) {
        return volume.at(std::min(base[0] + x, volume.size()[0] - 1), std::min(base[1] + y, volume.size()[1] - 1),
                         std::min(base[2] + z, volume.size()[2] - 1));
    };
    const auto mix = [](float a, float b, float t) { return a + (b - a) * t; };
    const auto plane = [&](std::int64_t z) {
        return mix(mix(at(0, 0, z), at(1, 0, z), part[0]), mix(at(0, 1, z), at(1, 1, z), part[0]), part[1]);
    };
    return mix(plane(0), plane(1), part[2]);
}

LyrObjectLink linkTo(LyrObject* object) {
    return {object, nullptr, -1};
}

/** Calls `dim` with the first of four channels for each value that is not in a section of a table. */
template <class Dim>
void forEachOutside(const LyrObject* table, int section, std::span<const float> values, std::span<std::uint8_t> colors,
                    Dim dim) {
    LyrValueArrayOPCache<float> boundaries;
    if (section < 0 || !table || !boundaries.load(table, Lyr::PositionList) || boundaries.items().empty()) {
        return;
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (std::isnan(values[i]) ||
            LyrSectionShares::sectionOf(values[i], boundaries.items()) != static_cast<std::size_t>(section)) {
            dim(colors.data() + 4 * i);
        }
    }
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
    d->highlighted.setComputed(true);
    d->highlighted.setValue(-1);
    addProperty(Lyr::HighlightedSection, &d->highlighted);
    addProperty(Lyr::ColorLookupTable, &d->table);
    addProperty(Lyr::ColorLookupTableRenderSettings, &d->settings);
    addProperty(Lyr::SurfaceValue, &d->surfaceValue);
    d->table.addPropertyExtension(&d->tableWatch);
    d->settings.addPropertyExtension(&d->settingsWatch);
    d->table.setValue(linkTo(table));
    d->settings.setValue(linkTo(settings));
    d->surface = PartSurface::of(document->volume());
}

LyrColoredLayer::~LyrColoredLayer() = default;

void LyrColoredLayer::prepareSurface() {
    surfaceCame();
    if (!d->surface->isFinished()) {
        QObject::connect(d->surface.get(), &PartSurface::finished, &d->context, [this] { surfaceCame(); });
    }
}

void LyrColoredLayer::surfaceCame() {
    if (d->surface->mesh()) {
        d->surfaceValue.setValue(d->surface->value());
    }
    const std::shared_ptr<const LyrRendering::SurfaceMesh> shown = mesh();
    if (!shown || d->surfaceJob) {
        return;
    }
    const auto values = std::make_shared<std::vector<float>>();
    d->surfaceJob = std::make_unique<LyqBackgroundJob>(
        [shown, values, work = vertexValues()](const LyqBackgroundJob::Progress& goesOn, QString&) {
            values->resize(shown->positions.size() / 3);
            for (std::size_t first = 0; first < values->size(); first += VERTICES_AT_ONCE) {
                const std::size_t count = std::min(VERTICES_AT_ONCE, values->size() - first);
                work(*shown, first, std::span(*values).subspan(first, count));
                if (!goesOn(static_cast<double>(first + count) / static_cast<double>(values->size()))) {
                    return false;
                }
            }
            return true;
        },
        QString::fromUtf8(LYS_ANALYSIS_MODULE));
    QObject::connect(d->surfaceJob.get(), &LyqBackgroundJob::finished, &d->context, [this, values](bool done) {
        if (done) {
            takeValues(values);
        }
    });
    d->surfaceJob->start();
}  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the job owns the closure

void LyrColoredLayer::takeValues(const std::shared_ptr<std::vector<float>>& values) {
    d->surfaceValues = values;
    // Views look again; the value of the surface itself may well be what it was.
    Message message(this, Lyr::PropertyHasChanged, Lyr::SurfaceValue);
    iocBroadcast(message);
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
    return d->surface->isFinished() && (!d->surfaceJob || !d->surfaceJob->isRunning()) &&
           (!d->order || d->order->isFinished());
}

std::vector<LyqLayer::Content> LyrColoredLayer::contents() const {
    std::vector<Content> all;
    if (LyrObject* colors = table()) {
        all.push_back({colors, QCoreApplication::translate("LyrColoredLayer", "Color Table"), "colors.json",
                       Lyr::ColorLookupTable});
    }
    if (LyrObject* legend = renderSettings()) {
        all.push_back(
            {legend, QCoreApplication::translate("LyrColoredLayer", "Legend Settings"), "legend.json", Lyrenum(-1)});
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

const std::shared_ptr<ValueOrder>& LyrColoredLayer::valueOrder() const {
    if (!d->order) {
        d->order = ValueOrder::of(d->values);
    }
    return d->order;
}

std::shared_ptr<const LyrRendering::SurfaceMesh> LyrColoredLayer::mesh() const {
    return d->surface->mesh();
}

LyrColoredLayer::VertexValues LyrColoredLayer::vertexValues() const {
    return [values = d->values](const LyrRendering::SurfaceMesh& mesh, std::size_t first, std::span<float> out) {
        for (std::size_t i = 0; i < out.size(); ++i) {
            out[i] = sampleBetween(*values, mesh.positions.data() + 3 * (first + i));
        }
    };
}

void LyrColoredLayer::valuesOnMesh(const LyrRendering::SurfaceMesh& mesh, std::vector<float>& out) const {
    out.resize(mesh.positions.size() / 3);
    vertexValues()(mesh, 0, out);
}

std::shared_ptr<const std::vector<float>> LyrColoredLayer::surfaceValues() const {
    return d->surfaceValues;
}

void LyrColoredLayer::finishSlice(int, int, std::span<const float>, std::span<std::uint8_t>) const {}

void LyrColoredLayer::finishMesh(std::span<std::uint8_t>) const {}

LyrTimestamp LyrColoredLayer::getFinishTimestamp() const {
    return {};
}

int LyrColoredLayer::highlightedSection() const {
    return static_cast<int>(d->highlighted.stored());
}

void LyrColoredLayer::setHighlightedSection(int section) {
    if (section != highlightedSection()) {
        d->highlightedAt = LyrTimestamp::getCurrentTimestamp();
        d->highlighted.setValue(section);
    }
}

void LyrColoredLayer::dimSlice(std::span<const float> values, std::span<std::uint8_t> pixels) const {
    // Enough to know the colour by, little enough to look past it.
    constexpr int SHARE = 6;
    forEachOutside(table(), highlightedSection(), values, pixels,
                   [](std::uint8_t* pixel) { pixel[3] = static_cast<std::uint8_t>(pixel[3] / SHARE); });
}

void LyrColoredLayer::dimMesh(std::span<const float> values, std::span<std::uint8_t> colors) const {
    constexpr int GREY = 110;
    constexpr int SHARE = 6;
    forEachOutside(table(), highlightedSection(), values, colors, [](std::uint8_t* color) {
        for (int channel = 0; channel < 3; ++channel) {
            color[channel] = static_cast<std::uint8_t>((color[channel] + GREY * (SHARE - 1)) / SHARE);
        }
    });
}

LyrTimestamp LyrColoredLayer::getHighlightTimestamp() const {
    return d->highlightedAt;
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
