#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <lyr_volume/LyrVolume.h>
#include <lyr_volume/LyrVolumeExport.h>

/** The built-in test part: a cast block with stepped walls, bores and pores, made by formula at any resolution.
 *
 *  The part lies in a cube of air of 64 mm. A block of 56 × 56 × 24 mm carries six upright walls of 2 to 10 mm; three
 *  cylindrical bores go through the block and sixteen closed pores lie inside it. All lengths are in mm from the corner
 *  of the cube: voxel i of N covers [i, i + 1] · 64 / N, so its centre, and the volume's origin, is at 32 / N.
 *
 *  The grey value of a voxel is air + (material − air) · share, where share is the part of the voxel that is filled:
 *  exact for the plane faces, subdivided finely for the round ones. Grey values therefore add up to true volumes: a
 * pore of 4 voxels across or more measures within 1 % of its formula.
 */
class LYR_VOLUME_EXPORT LyrCasting {
public:
    static constexpr std::int64_t kDefaultEdge = 128;
    static constexpr std::int64_t kSmallestEdge = 16;
    static constexpr std::int64_t kLargestEdge = 1024;

    /** A closed hollow: a ball or an ellipsoid along the axes. */
    struct Pore {
        std::array<double, 3> center;  ///< mm
        std::array<double, 3> radii;   ///< mm
        double volume;                 ///< mm³, 4/3 · π · product of the radii
    };

    /** An upright plate between two parallel planes; its thickness is measured along x. */
    struct Wall {
        std::array<double, 3> low;   ///< mm, lower corner
        std::array<double, 3> high;  ///< mm, upper corner
        double thickness;            ///< mm
    };

    /** A cylindrical hole through the block, along one of the axes. */
    struct Bore {
        LyrVolume::Axis axis;
        std::array<double, 3> from;  ///< mm, centre of one end
        std::array<double, 3> to;    ///< mm, centre of the other end
        double radius;               ///< mm
    };

    /** What is in the part, by construction. */
    struct Truth {
        double edge;                      ///< mm, edge of the whole cube
        double spacing;                   ///< mm, edge of a voxel
        float air;                        ///< grey value of air
        float material;                   ///< grey value of material
        std::array<double, 3> blockLow;   ///< mm
        std::array<double, 3> blockHigh;  ///< mm
        std::vector<Wall> walls;          ///< thinnest first
        std::vector<Bore> bores;
        std::vector<Pore> pores;  ///< none touches another, a bore or the surface: at least 1.5 mm lie between
        double poreVolume;        ///< mm³, all pores
        double materialVolume;    ///< mm³, block and walls less bores and pores
        double porosity;          ///< poreVolume / (poreVolume + materialVolume)
    };

    struct Options {
        std::int64_t edge = kDefaultEdge;  ///< voxels along each axis, kSmallestEdge to kLargestEdge
        double noisePercent = 0.0;         ///< standard deviation in percent of material − air, 0 to 100
        std::uint64_t seed = 1;            ///< the same seed gives the same noise, on every machine
    };

    /** The truth for an edge length in voxels; only `spacing` depends on it. */
    static Truth truth(std::int64_t edge);

    /** Makes the part. False, with a message in `error` and `out` untouched, when an option is out of its range or
     * there is not enough memory. */
    static bool create(const Options& options, std::shared_ptr<const LyrVolume>& out, std::string& error);
};
