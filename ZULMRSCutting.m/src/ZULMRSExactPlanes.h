#ifndef ZULMRSExactPlanes_h
#define ZULMRSExactPlanes_h

#include "ZULMRSBSPObjectFactory.h"

/// Another factory's planes and points, planes always with the coefficients asked for: requests to snap them
/// to the grid are not passed on. So a box is made without moving its faces.
class ZULMRSExactPlanes : public ZULMRSBSPObjectFactory
{
public:
    explicit ZULMRSExactPlanes(ZULMRSBSPObjectFactory& factory) : m_Factory(factory) {}

    ZULMRSErrorTypes SetGriddingTolerance(const ZULMathOBB& box, double tolerance) override
    {
        return m_Factory.SetGriddingTolerance(box, tolerance);
    }
    ZULMRSBSPPlane* CreatePlane(const std::array<double, 4>& equation, bool& isOpposite,
                                unsigned int flags) override
    {
        return m_Factory.CreatePlane(equation, isOpposite,
                                     flags & ~static_cast<unsigned int>(ZULMRSBSPCreatePlane_Quantize));
    }
    ZULMRSBSPPoint* CreatePoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3,
                                const ZULMathPoint* coordinates) override
    {
        return m_Factory.CreatePoint(p1, p2, p3, coordinates);
    }
    ZULMRSBSPPoint* CreatePoint(const ZULMathPoint& coordinates) override
    {
        return m_Factory.CreatePoint(coordinates);
    }
    ZULMRSBSPPoint* CreatePoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3,
                                bool& isValid) override
    {
        return m_Factory.CreatePoint(p1, p2, p3, isValid);
    }
    ZULMRSBSPPoint* CreatePoint(const std::array<ZULMRSBSPPlane*, 3>& planes, bool& isValid) override
    {
        return m_Factory.CreatePoint(planes, isValid);
    }
    ZULMRSBSPPoint* CreatePointOnEdge(const std::array<ZULMRSBSPPlane*, 3>& planes, ZULMRSBSPPoint* start,
                                      ZULMRSBSPPoint* end, ZULMRSBSPPlane* cuttingPlane) override
    {
        return m_Factory.CreatePointOnEdge(planes, start, end, cuttingPlane);
    }
    std::uint64_t Size() override { return m_Factory.Size(); }
    ZULMRSErrorTypes Tass() override { return m_Factory.Tass(); }
    void QuantizePlaneEquation(std::array<double, 4>& equation) override
    {
        m_Factory.QuantizePlaneEquation(equation);
    }

private:
    ZULMRSBSPObjectFactory& m_Factory;
};

#endif
