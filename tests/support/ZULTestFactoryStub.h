#ifndef ZULTestFactoryStub_h
#define ZULTestFactoryStub_h

#include <array>
#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

#include "ZULMRSBSPObjectFactory.h"

namespace ZULTest
{
/// A factory that shares nothing, writes down what it is asked for and refuses or turns over what it is told
/// to. Objects are named by the order of the requests.
class FactoryStub : public ZULMRSBSPObjectFactory
{
public:
    ZULMRSErrorTypes SetGriddingTolerance(const ZULMathOBB&, double) override { return ZULMRSNoError; }

    ZULMRSBSPPlane* CreatePlane(const std::array<double, 4>& equation, bool& isOpposite,
                                unsigned int flags) override
    {
        const std::size_t request = m_Equations.size();
        m_Equations.push_back(equation);
        m_Flags.push_back(flags);
        m_FlagsBefore.push_back(isOpposite);
        isOpposite = m_OppositePlanes.count(request) != 0;
        const double sign = isOpposite ? -1.0 : 1.0;
        m_Planes.push_back(m_RefusedPlanes.count(request) != 0 ? nullptr
                                                               : ZULMRSBSPPlaneNS::CreateCartesianPlane(
                                                                     sign * equation[0], sign * equation[1],
                                                                     sign * equation[2], sign * equation[3]));
        return m_Planes.back();
    }
    ZULMRSBSPPoint* CreatePoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3,
                                bool& isValid) override
    {
        const std::size_t request = m_Triples.size();
        m_Triples.push_back({p1, p2, p3});
        m_Points.push_back(m_RefusedPoints.count(request) != 0
                               ? nullptr
                               : ZULMRSBSPPointNS::CreatePoint(p1, p2, p3, isValid, true));
        return m_Points.back();
    }

    ZULMRSBSPPoint* CreatePoint(ZULMRSBSPPlane*, ZULMRSBSPPlane*, ZULMRSBSPPlane*,
                                const ZULMathPoint*) override
    {
        return nullptr;
    }
    ZULMRSBSPPoint* CreatePoint(const ZULMathPoint&) override { return nullptr; }
    ZULMRSBSPPoint* CreatePoint(const std::array<ZULMRSBSPPlane*, 3>&, bool&) override { return nullptr; }
    ZULMRSBSPPoint* CreatePointOnEdge(const std::array<ZULMRSBSPPlane*, 3>&, ZULMRSBSPPoint*, ZULMRSBSPPoint*,
                                      ZULMRSBSPPlane*) override
    {
        return nullptr;
    }
    std::uint64_t Size() override { return 0; }
    ZULMRSErrorTypes Tass() override { return ZULMRSNoError; }
    void QuantizePlaneEquation(std::array<double, 4>&) override {}

    std::set<std::size_t> m_RefusedPlanes;
    std::set<std::size_t> m_OppositePlanes;
    std::set<std::size_t> m_RefusedPoints;
    std::vector<std::array<double, 4>> m_Equations;
    std::vector<unsigned int> m_Flags;
    std::vector<bool> m_FlagsBefore;  ///< isOpposite as it came in
    std::vector<std::array<ZULMRSBSPPlane*, 3>> m_Triples;
    std::vector<ZULMRSBSPPlane*> m_Planes;
    std::vector<ZULMRSBSPPoint*> m_Points;
};
}  // namespace ZULTest

#endif
