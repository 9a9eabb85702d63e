#ifndef ZULTestToldPoint_h
#define ZULTestToldPoint_h

#include <array>
#include <optional>
#include <vector>

#include "ZULMRSBSPPoint.h"

namespace ZULTest
{
/// A point of a caller's own, which delivers an approximation and exact numbers as told, owned by the caller
/// or not, or neither of the two. It records its virtual calls by slot number.
class ToldPoint : public ZULMRSBSPPoint
{
public:
    using Approximation = std::array<double, 4>;
    using Representation = std::array<ZULExpFloatRingExtensionTS, 4>;

    ToldPoint() = default;
    ToldPoint(const ToldPoint&) = delete;
    ToldPoint& operator=(const ToldPoint&) = delete;
    ~ToldPoint() override = default;

    ZULMRSBSPPointType GetType() const override
    {
        m_Calls.push_back(0);
        return ZULMRSBSPPointType_3Planes;
    }
    ZULMRSBSPQuadruple<ZULExpDynamic> GetCartesianRepresentation_ExpDynamic() const override
    {
        m_Calls.push_back(1);
        return {nullptr, false};
    }
    ZULMRSBSPQuadruple<ZULExpInterval> GetCartesianRepresentation_ExpInterval() const override
    {
        m_Calls.push_back(2);
        return {nullptr, false};
    }
    ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS> GetCartesianRepresentation_FloatRing() const override
    {
        m_Calls.push_back(3);
        return Give<ZULExpFloatRingExtensionTS>(m_Representation);
    }
    ZULMRSBSPQuadruple<double> GetApproximatedXYZError() const override
    {
        m_Calls.push_back(4);
        return Give<double>(m_Approximation);
    }
    ZULMathPoint GetApproximatedPoint() const override
    {
        m_Calls.push_back(5);
        return {};
    }
    std::array<double, 3> GetApproximatedXYZ() const override
    {
        m_Calls.push_back(6);
        return {};
    }
    bool ReplacePlaneByEquivalentPlane(ZULMRSBSPPlane* /*newPlane*/, ZULMRSBSPPlane* /*oldPlane*/) override
    {
        m_Calls.push_back(7);
        return false;
    }

    std::optional<Approximation> m_Approximation;
    std::optional<Representation> m_Representation;
    bool m_GivesOwnership = true;
    mutable std::vector<int> m_Calls;

private:
    template <class Number>
    ZULMRSBSPQuadruple<Number> Give(const std::optional<std::array<Number, 4>>& numbers) const
    {
        if (!numbers) {
            return {nullptr, false};
        }
        if (m_GivesOwnership) {
            return {new std::array<Number, 4>(*numbers), true};
        }
        return {&*numbers, false};
    }
};
}  // namespace ZULTest

#endif
