#ifndef ZULBenchTablesRequests_h
#define ZULBenchTablesRequests_h

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include "ZULMRSBSPPlane.h"
#include "ZULMRSBSPPoint.h"

/// What is asked of the tables: from a fixed seed, every key twice, in random order.
namespace ZULBench
{
using Equation = std::array<double, 4>;
using PlaneTriple = std::array<ZULMRSBSPPlane*, 3>;

struct Releaser {
    template <class Object>
    void operator()(Object* object) const
    {
        object->Release();
    }
};
template <class Object>
using Owned = std::vector<std::unique_ptr<Object, Releaser>>;

/// An edge and the plane that cuts it.
struct EdgeRequest {
    PlaneTriple m_Planes;
    ZULMRSBSPPoint* m_Start;
    ZULMRSBSPPoint* m_End;
};

/// The requests for points, with what they name. Any three planes of a request meet in one point.
struct PointRequests {
    Owned<ZULMRSBSPPlane> m_Planes;
    std::vector<PlaneTriple> m_Items;
};
/// The same for points on edges; the third plane is the one that cuts.
struct EdgeRequests {
    Owned<ZULMRSBSPPlane> m_Planes;
    Owned<ZULMRSBSPPoint> m_Points;
    std::vector<EdgeRequest> m_Items;
};
/// The requests for planes.
struct PlaneRequests {
    std::vector<Equation> m_Items;
};

PointRequests MakePointRequests(std::size_t nbRequests);
EdgeRequests MakeEdgeRequests(std::size_t nbRequests);
PlaneRequests MakePlaneRequests(std::size_t nbRequests);
}  // namespace ZULBench

#endif
