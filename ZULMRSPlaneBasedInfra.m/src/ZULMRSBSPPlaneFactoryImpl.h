#ifndef ZULMRSBSPPlaneFactoryImpl_h
#define ZULMRSBSPPlaneFactoryImpl_h

#include <array>
#include <cstdint>
#include <unordered_set>

#include "ZULCriticalSection.h"
#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSBSPPlaneFactory.h"
#include "ZULMRSBSPPlaneIdentity.h"
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
    using ExactSet = std::unordered_set<ZULMRSBSPPlane*, ZULMRSBSPPlaneIdentity::ExactHash,
                                        ZULMRSBSPPlaneIdentity::ExactEqual>;
    using GeometricSet = std::unordered_set<ZULMRSBSPPlane*, ZULMRSBSPPlaneIdentity::GeometricHash,
                                            ZULMRSBSPPlaneIdentity::GeometricEqual>;

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

    /// Calls the operation with the set that is in use.
    template <class Operation>
    decltype(auto) WithActiveSet(Operation&& operation)
    {
        return m_IsGeometric ? operation(m_GeometricSet) : operation(m_ExactSet);
    }

    ZULMRSBSPPlane* FindOrCreate(const std::array<double, 4>& key, bool& isOpposite, bool acceptOpposite);
    ZULMRSBSPPlane* FindHeld(const std::array<double, 4>& key);
    ZULMRSBSPPlane* CreateHeld(const std::array<double, 4>& key);

    ZULMRSBSPCartesianPlane* m_SearchPlane;  // the key of look-ups; null when memory was exhausted
    ExactSet m_ExactSet;
    GeometricSet m_GeometricSet;
    std::uint32_t m_NbPlanesRequired = 0;
    std::uint32_t m_NbPlanesReused = 0;
    std::array<double, 4> m_GridSteps;  // for a, b, c and d
    ZULCriticalSection m_Lock;
    bool m_IsGeometric;
};

#endif
