#ifndef MillToolProfile_h
#define MillToolProfile_h

#include <cstdint>
#include <string>
#include <vector>

#include "MillLattice.h"
#include "MillShape.h"

/// How a round cutter becomes one with flat sides.
enum class MillSidesKind {
    /// The sides touch the circle from outside: all that the cutter removes is removed. With a number of
    /// sides
    /// that is a multiple of four, a slot along X or Y is exactly as wide as the cutter.
    Circumscribed,
    /// The corners lie on the circle or within: nothing is removed that the cutter leaves.
    Inscribed
};

constexpr int kMillFewestSides = 3;
constexpr int kMillMostSides = 256;

/// A cutter as a stack of cross-sections, all of them one polygon scaled by whole factors. In nanometres, the
/// tip at the origin. Whole coordinates and factors keep the facets between the cross-sections exactly plane.
struct MillToolProfile {
    /// A cross-section: the polygon times the factor, at a height. Factor 0 is a tip.
    struct Ring {
        std::int64_t m_Factor;
        std::int64_t m_Z;
    };

    /// Counterclockwise and convex; z = 0.
    std::vector<MillVector> m_Polygon;
    /// Upwards; the last is the shank's.
    std::vector<Ring> m_Rings;
};

/// The cutter with the given number of sides. The kind rules flat tools. Of ball and V tools every
/// cross-section is circumscribed, and a ball's facets touch the sphere from outside, the lowest one at the
/// tip: such a tool cuts down to the programmed depth and to its full width. Throws MillError with the
/// subject where the tool is too small for so many sides.
MillToolProfile MillMakeToolProfile(const MillShape& shape, int sides, MillSidesKind kind,
                                    const std::string& subject);

#endif
