#pragma once

#include <array>
#include <cstddef>
#include <string>

/** How many objects of each kind a context knows: textures, buffers, renderbuffers, programs and samplers, which all
 * views share, and framebuffers and vertex arrays of its own. Counted by asking for each name that may have been given
 * out, so that nobody's objects are missed, the toolkit's included. */
struct GlCensus {
    static constexpr std::size_t KINDS = 7;

    std::array<int, KINDS> counts{};

    /** Of the current context. */
    static GlCensus take();

    std::string text() const;
    friend bool operator==(const GlCensus& a, const GlCensus& b) { return a.counts == b.counts; }
};
