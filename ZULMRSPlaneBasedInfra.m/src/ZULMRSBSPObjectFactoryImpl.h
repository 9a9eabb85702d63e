#ifndef ZULMRSBSPObjectFactoryImpl_h
#define ZULMRSBSPObjectFactoryImpl_h

#include <memory>
#include <utility>

#include "ZULMRSBSPObjectFactory.h"
#include "ZULMRSBSPPlaneFactory.h"
#include "ZULMRSBSPPointFactory.h"

/// Forwards every operation to the plane factory or the point factory that it owns.
class ZULMRSBSPObjectFactoryImpl : public ZULMRSBSPObjectFactory
{
public:
    /// Takes ownership. Nothing but IsComplete and destruction is allowed with a null.
    ZULMRSBSPObjectFactoryImpl(std::unique_ptr<ZULMRSBSPPointFactory> pointFactory,
                               std::unique_ptr<ZULMRSBSPPlaneFactory> planeFactory)
        : m_PointFactory(std::move(pointFactory)), m_PlaneFactory(std::move(planeFactory))
    {
    }

    bool IsComplete() const { return m_PointFactory != nullptr && m_PlaneFactory != nullptr; }

    ZULMRSErrorTypes SetGriddingTolerance(const ZULMathOBB& box, double tolerance) override
    {
        return m_PlaneFactory->SetGriddingTolerance(box, tolerance);
    }
    ZULMRSBSPPlane* CreatePlane(const std::array<double, 4>& equation, bool& isOpposite,
                                unsigned int flags) override
    {
        return m_PlaneFactory->CreatePlane(equation, isOpposite, flags);
    }
    ZULMRSBSPPoint* CreatePoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3,
                                const ZULMathPoint* coordinates) override
    {
        return m_PointFactory->CreatePoint(p1, p2, p3, coordinates);
    }
    ZULMRSBSPPoint* CreatePoint(const ZULMathPoint& coordinates) override
    {
        return m_PointFactory->CreatePoint(coordinates);
    }
    ZULMRSBSPPoint* CreatePoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3,
                                bool& isValid) override
    {
        const std::array<ZULMRSBSPPlane*, 3> planes = {p1, p2, p3};
        return m_PointFactory->CreatePoint(planes, isValid);
    }
    ZULMRSBSPPoint* CreatePoint(const std::array<ZULMRSBSPPlane*, 3>& planes, bool& isValid) override
    {
        return m_PointFactory->CreatePoint(planes, isValid);
    }
    ZULMRSBSPPoint* CreatePointOnEdge(const std::array<ZULMRSBSPPlane*, 3>& planes, ZULMRSBSPPoint* start,
                                      ZULMRSBSPPoint* end, ZULMRSBSPPlane* cuttingPlane) override
    {
        return m_PointFactory->CreatePointOnEdge(planes, start, end, cuttingPlane);
    }
    std::uint64_t Size() override
    {
        const std::uint64_t nbPlanes = m_PlaneFactory->Size();
        return nbPlanes + m_PointFactory->Size();
    }
    ZULMRSErrorTypes Tass() override
    {
        // Points first: a point that goes sets its three planes free.
        const ZULMRSErrorTypes ofPoints = m_PointFactory->Tass();
        const ZULMRSErrorTypes ofPlanes = m_PlaneFactory->Tass();
        return ofPoints != ZULMRSNoError ? ofPoints : ofPlanes;
    }
    void QuantizePlaneEquation(std::array<double, 4>& equation) override
    {
        m_PlaneFactory->QuantizePlaneEquation(equation);
    }

private:
    // Destroyed in reverse order: the plane factory first, so that its statistics come first. Planes that
    // points still hold survive it.
    std::unique_ptr<ZULMRSBSPPointFactory> m_PointFactory;
    std::unique_ptr<ZULMRSBSPPlaneFactory> m_PlaneFactory;
};

#endif
