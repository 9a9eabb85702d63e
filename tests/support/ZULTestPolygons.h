#ifndef ZULTestPolygons_h
#define ZULTestPolygons_h

#include <array>
#include <cmath>
#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include "ZULMRSBSPPlane.h"
#include "ZULMRSBSPPoint.h"
#include "ZULMRSBSPPolygon.h"
#include "ZULMRSBSPPolyhedron.h"
#include "ZULTestSupport.h"

/// What the tests of polygons and polyhedra share.
namespace ZULTest
{
using OwnedPlane = Owner<ZULMRSBSPPlane>;
using OwnedPoint = Owner<ZULMRSBSPPoint>;
using OwnedPolygon = Owner<ZULMRSBSPPolygon>;
using OwnedPolyhedron = Owner<ZULMRSBSPPolyhedron>;

inline OwnedPlane MakePlane(double a, double b, double c, double d)
{
    return OwnedPlane(ZULMRSBSPPlaneNS::CreateCartesianPlane(a, b, c, d));
}

inline OwnedPoint MakePoint(double x, double y, double z)
{
    return OwnedPoint(ZULMRSBSPPointNS::CreatePoint(ZULMathPoint(x, y, z)));
}

template <class Object>
std::vector<Object*> Pointers(const std::vector<Owner<Object>>& objects)
{
    std::vector<Object*> pointers;
    for (const Owner<Object>& object : objects) {
        pointers.push_back(object.get());
    }
    return pointers;
}

template <class Object>
std::vector<int> RefCounts(const std::vector<Owner<Object>>& objects)
{
    std::vector<int> counts;
    for (const Owner<Object>& object : objects) {
        counts.push_back(object->GetRefCount());
    }
    return counts;
}

/// Values of characters, read as signed bytes.
inline std::vector<int> Values(const std::vector<char>& characters)
{
    std::vector<int> values;
    for (const char character : characters) {
        values.push_back(static_cast<signed char>(character));
    }
    return values;
}

/// The planes of a convex loop in the plane z = 0, outward normals, counter-clockwise seen from above.
struct Loop {
    OwnedPlane m_SupportingPlane;
    std::vector<OwnedPlane> m_Edges;

    OwnedPolygon MakePolygon() const
    {
        return OwnedPolygon(new ZULMRSBSPPolygon(m_SupportingPlane.get(), Pointers(m_Edges), {}));
    }
};

/// The square of side 2 round the origin; vertices (1, -1), (1, 1), (-1, 1), (-1, -1), all canonical planes.
inline Loop MakeSquare()
{
    Loop loop{MakePlane(0, 0, 1, 0), {}};
    loop.m_Edges.push_back(MakePlane(0, -1, 0, -1));
    loop.m_Edges.push_back(MakePlane(1, 0, 0, -1));
    loop.m_Edges.push_back(MakePlane(0, 1, 0, -1));
    loop.m_Edges.push_back(MakePlane(-1, 0, 0, -1));
    return loop;
}

/// A regular polygon round the unit circle.
inline Loop MakeRegular(std::size_t nbEdges)
{
    Loop loop{MakePlane(0, 0, 1, 0), {}};
    for (std::size_t i = 0; i < nbEdges; ++i) {
        const double angle = 6.283185307179586 * static_cast<double>(i) / static_cast<double>(nbEdges);
        loop.m_Edges.push_back(MakePlane(std::cos(angle), std::sin(angle), 0, -1));
    }
    return loop;
}

inline std::array<double, 3> XYZ(const ZULMRSBSPPoint* point)
{
    return point->GetApproximatedXYZ();
}

/// A pointer as a stream writes it.
inline std::string Address(const void* pointer)
{
    std::ostringstream text;
    text << pointer;
    return text.str();
}
}  // namespace ZULTest

#endif
