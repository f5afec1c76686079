#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <analysis/compute/Components_p.h>
#include <analysis/compute/GreyLevels_p.h>
#include <analysis/compute/Grid_p.h>
#include <analysis/compute/LyrDefectResult.h>

namespace lyranalysis {

/** Measures single regions. Many threads may use one meter. */
class DefectMeter {
public:
    /** `labels` holds for each voxel the number of its region counted from 1, or 0. `nearby` has the radius 2. */
    DefectMeter(const Grid& grid, const Components& components, const std::vector<std::uint32_t>& labels,
                const MaterialNeighbours& nearby, const GreyLevels& levels, const LyrVolume::Vector& origin);

    /** Everything about a region but its number. Gives up early when the task is stopped. */
    LyrDefect measure(std::size_t region, const AnalysisTask& task) const;

private:
    using Place = std::array<std::int64_t, 3>;
    /** A voxel; `free` when all its neighbours lie in the grid. */
    struct Spot {
        Place place;
        std::size_t index;
        bool free;
    };
    struct Shape;

    void makeSurfaceDirections();
    void makeExtentDirections();

    template <typename Visit>
    void forEachVoxel(std::size_t region, const AnalysisTask& task, const Visit& visit) const;
    bool isInGrid(const Place& place) const;
    Spot spotAt(const Place& place) const;
    bool neighbour(const Spot& spot, std::size_t direction, Spot& out) const;
    std::uint32_t labelNear(const Spot& spot, std::size_t direction) const;
    int weightOf(const Spot& spot, std::uint32_t label) const;
    bool belongsTo(const Spot& spot, std::uint32_t label, std::size_t finder) const;
    void addToShape(const Spot& spot, std::uint32_t label, Shape& shape) const;
    void addMaterialNear(const Spot& spot, std::size_t axis, std::int64_t side, std::vector<std::size_t>& found) const;
    GreyLevels levelsAround(std::size_t region, std::uint64_t surfaceVoxels, const AnalysisTask& task) const;
    double airVoxels(std::size_t region, const GreyLevels& levels, const AnalysisTask& task) const;

    const Grid& grid_;
    const Components& components_;
    const std::vector<std::uint32_t>& labels_;
    const MaterialNeighbours& nearby_;
    const GreyLevels& levels_;
    LyrVolume::Vector origin_;
    std::array<std::ptrdiff_t, 26> offsets_{};    ///< to the neighbours in the grid
    std::array<double, 13> surfaceOfCrossing_{};  ///< mm², for the first 13 neighbours and those opposite to them
    std::vector<std::array<double, 3>> extentDirections_;
    std::vector<double> extentOfVoxel_;  ///< mm, for each of the extent directions
};

}  // namespace lyranalysis
