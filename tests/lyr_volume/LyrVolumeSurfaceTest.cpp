#include <gtest/gtest.h>
#include <lyr_volume/LyrCasting.h>
#include <lyr_volume/LyrVolumeSurface.h>

#include <cmath>
#include <limits>
#include <map>
#include <utility>

namespace {

using Shape = std::function<float(double, double, double)>;

/** A volume of n³ voxels of 0.5 mm from a formula over mm. */
std::shared_ptr<const LyrVolume> makeVolume(std::int64_t n, const Shape& shape) {
    LyrVolume::Description description;
    description.size = {n, n, n};
    description.spacing = {0.5, 0.5, 0.5};
    std::vector<float> samples;
    for (std::int64_t z = 0; z < n; ++z) {
        for (std::int64_t y = 0; y < n; ++y) {
            for (std::int64_t x = 0; x < n; ++x) {
                samples.push_back(shape((double(x) + 0.5) * 0.5, (double(y) + 0.5) * 0.5, (double(z) + 0.5) * 0.5));
            }
        }
    }
    return LyrVolume::create(description, std::move(samples));
}

/** Falls by 1 for each mm from the centre (8, 8, 8). */
float ball(double x, double y, double z) {
    return float(10.0 - std::sqrt((x - 8) * (x - 8) + (y - 8) * (y - 8) + (z - 8) * (z - 8)));
}

/** The volume that the triangles enclose, by the divergence theorem; positive if they look outwards. */
double enclosedVolume(const LyrVolumeSurface& surface) {
    double sum = 0.0;
    for (const auto& t : surface.triangles) {
        const auto& a = surface.positions[t[0]];
        const auto& b = surface.positions[t[1]];
        const auto& c = surface.positions[t[2]];
        sum += double(a.x) * (double(b.y) * double(c.z) - double(b.z) * double(c.y)) +
               double(a.y) * (double(b.z) * double(c.x) - double(b.x) * double(c.z)) +
               double(a.z) * (double(b.x) * double(c.y) - double(b.y) * double(c.x));
    }
    return sum / 6.0;
}

/** True if each edge is run through once in either direction: no hole, no face turned over. */
bool isClosed(const LyrVolumeSurface& surface) {
    std::map<std::pair<std::uint32_t, std::uint32_t>, int> edges;
    for (const auto& t : surface.triangles) {
        for (std::size_t i = 0; i < 3; ++i) {
            ++edges[{t[i], t[(i + 1) % 3]}];
        }
    }
    for (const auto& [edge, count] : edges) {
        const auto back = edges.find({edge.second, edge.first});
        if (back == edges.end() || back->second != count) {
            return false;
        }
    }
    return true;
}

std::shared_ptr<const LyrVolumeSurface> extract(const LyrVolume& volume, float value) {
    std::shared_ptr<const LyrVolumeSurface> surface;
    std::string error;
    EXPECT_TRUE(LyrVolumeSurface::extract(volume, value, surface, error)) << error;
    return surface;
}

}  // namespace

TEST(LyrVolumeSurface, a_balls_surface_lies_at_its_radius_and_looks_outwards) {
    const auto volume = makeVolume(32, ball);
    const auto surface = extract(*volume, 5.0f);
    ASSERT_TRUE(surface);
    ASSERT_GT(surface->positions.size(), 100u);
    ASSERT_EQ(surface->normals.size(), surface->positions.size());
    for (std::size_t i = 0; i < surface->positions.size(); ++i) {
        const LyrVector3<float> out = surface->positions[i] - LyrVector3<float>(8, 8, 8);
        const float radius = std::sqrt(out.x * out.x + out.y * out.y + out.z * out.z);
        EXPECT_NEAR(radius, 5.0f, 0.1f);
        const LyrVector3<float>& n = surface->normals[i];
        EXPECT_NEAR(n.x * n.x + n.y * n.y + n.z * n.z, 1.0f, 1e-4f);
        EXPECT_GT((n.x * out.x + n.y * out.y + n.z * out.z) / radius, 0.9f);
    }
    EXPECT_TRUE(isClosed(*surface));
    EXPECT_NEAR(enclosedVolume(*surface), 4.0 / 3.0 * 3.14159265 * 125.0, 10.0);
}

TEST(LyrVolumeSurface, a_volume_that_is_full_gets_a_closed_surface_at_its_border) {
    const auto volume = makeVolume(20, [](double, double, double) { return 3.0f; });
    const auto surface = extract(*volume, 1.0f);
    ASSERT_TRUE(surface);
    EXPECT_TRUE(isClosed(*surface));
    EXPECT_NEAR(enclosedVolume(*surface), 1000.0, 20.0);  // a cube of 10 mm with its edges cut
}

TEST(LyrVolumeSurface, inner_hollows_have_a_surface_that_looks_into_them) {
    const auto volume = makeVolume(32, [](double x, double y, double z) { return -ball(x, y, z); });
    const auto surface = extract(*volume, -5.0f);
    ASSERT_TRUE(surface);
    EXPECT_TRUE(isClosed(*surface));
    // The cube of 16 mm less the ball of 5 mm.
    EXPECT_NEAR(enclosedVolume(*surface), 4096.0 - 4.0 / 3.0 * 3.14159265 * 125.0, 60.0);
}

TEST(LyrVolumeSurface, samples_that_are_not_finite_count_as_low) {
    const auto volume = makeVolume(32, [](double x, double y, double z) {
        const float v = ball(x, y, z);
        return v >= 5.0f   ? v
               : v >= 4.0f ? std::numeric_limits<float>::quiet_NaN()
                           : -std::numeric_limits<float>::infinity();
    });
    const auto surface = extract(*volume, 5.0f);
    ASSERT_TRUE(surface);
    EXPECT_TRUE(isClosed(*surface));
    EXPECT_NEAR(enclosedVolume(*surface), 4.0 / 3.0 * 3.14159265 * 125.0, 60.0);
    for (const auto& p : surface->positions) {
        EXPECT_TRUE(std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z));
    }
}

TEST(LyrVolumeSurface, a_value_above_all_samples_gives_an_empty_surface) {
    const auto surface = extract(*makeVolume(16, ball), 11.0f);
    ASSERT_TRUE(surface);
    EXPECT_TRUE(surface->triangles.empty());
    EXPECT_TRUE(surface->positions.empty());
}

TEST(LyrVolumeSurface, a_single_voxel_has_a_closed_surface) {
    LyrVolume::Description description;
    description.size = {1, 1, 1};
    const auto volume = LyrVolume::create(description, {2.0f});
    const auto surface = extract(*volume, 1.0f);
    ASSERT_TRUE(surface);
    EXPECT_FALSE(surface->triangles.empty());
    EXPECT_TRUE(isClosed(*surface));
}

TEST(LyrVolumeSurface, a_value_that_is_not_finite_is_refused_with_a_message) {
    const auto volume = makeVolume(8, ball);
    std::shared_ptr<const LyrVolumeSurface> surface;
    std::string error;
    EXPECT_FALSE(LyrVolumeSurface::extract(*volume, std::numeric_limits<float>::quiet_NaN(), surface, error));
    EXPECT_FALSE(surface);
    EXPECT_FALSE(error.empty());
}

TEST(LyrVolumeSurface, a_cancelled_extraction_ends_without_result_or_message) {
    const auto volume = makeVolume(32, ball);
    std::shared_ptr<const LyrVolumeSurface> surface;
    std::string error = "old";
    double last = 0.0;
    EXPECT_FALSE(LyrVolumeSurface::extract(*volume, 5.0f, surface, error, [&](double part) {
        EXPECT_GE(part, last);
        last = part;
        return part < 0.2;
    }));
    EXPECT_FALSE(surface);
    EXPECT_EQ(error, "");
    EXPECT_GE(last, 0.2);
}

TEST(LyrVolumeSurface, the_casting_encloses_its_material) {
    std::shared_ptr<const LyrVolume> volume;
    std::string error;
    ASSERT_TRUE(LyrCasting::create({96, 0.0, 1}, volume, error)) << error;
    const LyrCasting::Truth truth = LyrCasting::truth(96);
    const auto surface = extract(*volume, 0.5f * (truth.air + truth.material));
    ASSERT_TRUE(surface);
    EXPECT_TRUE(isClosed(*surface));
    EXPECT_NEAR(enclosedVolume(*surface) / truth.materialVolume, 1.0, 0.02);
}

TEST(LyrVolumeSurface, the_suggested_value_parts_two_peaks) {
    // 0.5 … 0.9 in a ball of 4 mm, -3 … -2.6 around it.
    const auto volume = makeVolume(32, [](double x, double y, double z) {
        return (ball(x, y, z) > 6.0f ? 0.5f : -3.0f) + 0.4f * float(x / 16.0);
    });
    const float value = LyrVolumeSurface::suggestValue(*volume);
    EXPECT_GT(value, -2.6f);
    EXPECT_LT(value, 0.5f);
    // Only the two values 0 and 1: the middle between them.
    const auto binary = makeVolume(16, [](double x, double, double) { return x < 3.0 ? 0.0f : 1.0f; });
    EXPECT_NEAR(LyrVolumeSurface::suggestValue(*binary), 0.5f, 0.01f);
}

TEST(LyrVolumeSurface, the_suggested_value_of_a_constant_volume_is_its_value) {
    EXPECT_EQ(LyrVolumeSurface::suggestValue(*makeVolume(4, [](double, double, double) { return 7.0f; })), 7.0f);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(LyrVolumeSurface::suggestValue(*makeVolume(4, [=](double, double, double) { return nan; })), 0.0f);
    // A range wider than the largest float.
    const float value = LyrVolumeSurface::suggestValue(
        *makeVolume(4, [](double x, double, double) { return x < 1.0 ? -3.0e38f : 3.0e38f; }));
    EXPECT_LT(std::fabs(value), 1.0e37f);
}
