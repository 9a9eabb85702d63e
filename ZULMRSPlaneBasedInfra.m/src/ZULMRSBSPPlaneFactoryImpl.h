#ifndef ZULMRSBSPPlaneFactoryImpl_h
#define ZULMRSBSPPlaneFactoryImpl_h

#include <array>
#include <cstdint>

#include "ZULCriticalSection.h"
#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSBSPHeldPlanes.h"
#include "ZULMRSBSPPlaneFactory.h"
#include "ZULMRSBSPScaledNorm.h"

/// The plane factory. CreatePlane is safe from many threads at once; everything else must run alone.
class ZULMRSBSPPlaneFactoryImpl : public ZULMRSBSPPlaneFactory
{
public:
    explicit ZULMRSBSPPlaneFactoryImpl(bool geometricIdentity);
    ZULMRSBSPPlaneFactoryImpl(const ZULMRSBSPPlaneFactoryImpl&) = delete;
    ZULMRSBSPPlaneFactoryImpl& operator=(const ZULMRSBSPPlaneFactoryImpl&) = delete;
    /// Writes the statistics and releases every plane.
    ~ZULMRSBSPPlaneFactoryImpl() override;

    ZULMRSErrorTypes SetGriddingTolerance(const ZULMathOBB& box, double tolerance) override;
    ZULMRSBSPPlane* CreatePlane(const std::array<double, 4>& equation, bool& isOpposite,
                                unsigned int flags) override;
    void QuantizePlaneEquation(std::array<double, 4>& equation) override;
    std::uint64_t Size() override;
    ZULMRSErrorTypes Tass() override;

private:
    /// Normalises and snaps all four coefficients. False for a normal that is too short (reported); out is
    /// not written then.
    bool QuantizePlaneEquation(const std::array<double, 4>& in, std::array<double, 4>& out) const;

    /// The equation divided by the normal's length, unless that counts as 1.
    std::array<double, 4> Normalized(const std::array<double, 4>& equation,
                                     const ZULMRSBSPScaledNorm& norm) const;
    std::array<double, 4> Snapped(const std::array<double, 4>& equation) const;
    /// Normalised and snapped.
    std::array<double, 4> OnGrid(const std::array<double, 4>& equation,
                                 const ZULMRSBSPScaledNorm& norm) const;
    bool AreStepsTooSmall() const;

    ZULMRSBSPPlane* FindOrCreate(const std::array<double, 4>& equation, bool& isOpposite, unsigned int flags);
    template <class Key>
    ZULMRSBSPPlane* FindOrCreate(const std::array<double, 4>& equation, bool& isOpposite,
                                 bool acceptOpposite);

    ZULMRSBSPCartesianPlane* m_SearchPlane;  // pattern of the keys; null when memory was exhausted
    std::array<double, 4> m_GridSteps;       // for a, b, c and d
    bool m_IsGeometric;
    // From its end on what every request changes, away from what it only reads.
    ZULMRSBSPHeldPlanes m_Planes;
    ZULCriticalSection m_Lock;
    std::uint32_t m_NbPlanesRequired = 0;
    std::uint32_t m_NbPlanesReused = 0;
};

#endif
