// The library, by its public calls.
#include <memory>

#include "Workloads.h"
#include "ZULBenchMain.h"
#include "ZULBenchStages.h"
#include "ZULMRSBSPPredicates.h"
#include "zulmrsBytes.h"

namespace
{
struct Releaser {
    template <class Object>
    void operator()(Object* object) const
    {
        object->Release();
    }
};

struct Peer : ZULBench::PeerBase {
    using Plane = std::unique_ptr<ZULMRSBSPPlane, Releaser>;
    using Point = std::unique_ptr<ZULMRSBSPPoint, Releaser>;
    using Vertex = ZULMathPoint;
    using Matrix = ZULBench::MatrixCase;
    static constexpr bool KeepsMore = true;

    static Plane MakePlane(const ZULBench::Equation& equation)
    {
        return Plane(ZULMRSBSPPlaneNS::CreateCartesianPlane(equation));
    }
    static Plane MakePlane(const ZULBench::ThreePoints& points)
    {
        return Plane(ZULMRSBSPPlaneNS::Create3PointsPlane(points));
    }
    static Point MakePoint(const Plane& p, const Plane& q, const Plane& r)
    {
        bool isValid = false;
        return Point(ZULMRSBSPPointNS::CreatePoint(p.get(), q.get(), r.get(), isValid, false));
    }
    static int Side(const Plane& plane, const Point& point)
    {
        return ZULMRSBSPPredicates::IsPointInFrontOfPlane(*plane, *point);
    }

    static int IsAfter(const Point& p, const Point& q)
    {
        return ZULMRSBSPPredicates::LexicographicOrder(*p, *q) == ZULMRSExtendedTrue;
    }
    static int Equal(const Point& p, const Point& q)
    {
        return ZULMRSBSPPredicates::ArePointsEqual(*p, *q) == ZULMRSExtendedTrue;
    }

    static Vertex MakeVertex(const ZULBench::Triple& vertex) { return {vertex[0], vertex[1], vertex[2]}; }
    static int SideOfVertex(const Plane& plane, const Vertex& vertex)
    {
        return ZULMRSBSPPredicates::IsPointInFrontOfPlane(*plane, vertex);
    }

    static Matrix MakeMatrix(const ZULBench::MatrixCase& rows) { return rows; }
    static int Determinant(const Matrix& m)
    {
        return ZULMRSBSPPredicates::SignOf3x3Determinant(m[0][0], m[0][1], m[0][2], m[1][0], m[1][1], m[1][2],
                                                         m[2][0], m[2][1], m[2][2]);
    }

    static int Parallel(const Plane& p, const Plane& q)
    {
        return ZULMRSBSPPredicates::ArePlanesParallel(*p, *q) == ZULMRSExtendedTrue;
    }
    static int Coincident(const Plane& p, const Plane& q)
    {
        return ZULMRSBSPPredicates::ArePlanesCoincident(*p, *q) == ZULMRSExtendedTrue;
    }
};
}  // namespace

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    ZULBench::StageObserver::Register();
    ZULBench::RegisterBytes();
    ZULBench::RegisterPredicates<Peer>();
}
