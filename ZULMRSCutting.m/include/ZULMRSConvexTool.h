#ifndef ZULMRSConvexTool_h
#define ZULMRSConvexTool_h

#include <array>
#include <vector>

/// A convex body as the common part of half-spaces: the points with a x + b y + c z + d <= 0 for every
/// equation (a, b, c, d), so normals point out of the body. The coefficients are taken as exact. Nothing
/// needs to be in order, minimal or bounded; no half-space at all is the whole space. A plain value.
struct ZULMRSConvexTool {
    std::vector<std::array<double, 4>> m_HalfSpaces;
};

#endif
