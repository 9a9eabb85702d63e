#ifndef ZULMRSBSPPlaneIdentity_h
#define ZULMRSBSPPlaneIdentity_h

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "ZULExpFloatStatus.h"
#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSBSPHash.h"
#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPScaledNorm.h"

/// The two ways in which the plane factory recognises a plane: the key of each, with hash and equality.
namespace ZULMRSBSPPlaneIdentity
{
/// Planes are the same when their four coefficients are equal. Compared by their bits, which asks nothing of
/// the caller's floating-point environment.
class ExactKey
{
public:
    explicit ExactKey(const std::array<double, 4>& equation)
        : m_Words{Canonical(equation[0]), Canonical(equation[1]), Canonical(equation[2]),
                  Canonical(equation[3])},
          m_Hash(ZULMRSBSPHash::OfWord(m_Words[0]) ^ ZULMRSBSPHash::OfWord(m_Words[1]) ^
                 ZULMRSBSPHash::OfWord(m_Words[2]) ^ ZULMRSBSPHash::OfWord(m_Words[3]))
    {
    }

    std::size_t GetHash() const { return m_Hash; }
    /// Never for a coefficient that is not a number.
    bool IsSame(const ZULMRSBSPCartesianPlane& plane) const
    {
        const std::array<double, 4> coords = plane.ZULMRSBSPCartesianPlane::GetCoords();
        std::uint64_t difference = 0;
        bool isNumber = true;
        for (std::size_t i = 0; i < coords.size(); ++i) {
            difference |= Canonical(coords[i]) ^ m_Words[i];
            isNumber &= (m_Words[i] << 1U) <= BitsOfInfinity << 1U;
        }
        return difference == 0 && isNumber;
    }

private:
    static constexpr std::uint64_t BitsOfInfinity = 0x7FF0000000000000U;

    static std::uint64_t Canonical(double value) { return ZULMRSBSPHash::BitsOf(value); }

    std::array<std::uint64_t, 4> m_Words;
    std::size_t m_Hash;
};

/// A unit normal coarsened to 48 bits: which component dominates, the three signs, and the two other
/// components with 22 bits each. All 0 for a normal that rounds to nothing.
struct DirectionCode {
    std::uint64_t m_Byte0 = 0;
    std::uint64_t m_Byte1 = 0;
    std::uint64_t m_Code = 0;

    DirectionCode(double a, double b, double c)
    {
        constexpr double scale = 2965819.3865442984;
        const auto magnitude = [](double x) { return static_cast<std::uint32_t>(std::fabs(x) * scale); };
        const std::uint32_t ua = magnitude(a);
        const std::uint32_t ub = magnitude(b);
        const std::uint32_t uc = magnitude(c);
        if (ua == 0 && ub == 0 && uc == 0) {
            return;
        }
        std::uint32_t flags = 1;
        std::uint32_t first = ua;
        std::uint32_t second = ub;
        if (ua >= ub && ua >= uc) {
            flags |= 2U;
            first = uc;
        } else if (ub >= ua && ub >= uc) {
            flags |= 4U;
            second = uc;
        }
        flags |= (a < 0.0 ? 8U : 0U) | (b < 0.0 ? 16U : 0U) | (c < 0.0 ? 32U : 0U);
        m_Byte0 = ((first * 64U) | flags) & 0xFFU;
        m_Byte1 = (first >> 2U) & 0xFFU;
        m_Code = (second << 11U) | (first >> 10U);
    }
};

/// Planes are the same when they are exactly coincident and face the same way. The hash sees the direction
/// of the normal alone, so that all planes of one direction share a hash and the exact predicates decide.
class GeometricKey
{
public:
    /// The key is a plane itself: a copy of any other, which counts as no construction, with another
    /// equation.
    GeometricKey(const ZULMRSBSPCartesianPlane& any, const std::array<double, 4>& equation)
        : m_Plane(any), m_Hash(OfEquation(equation))
    {
        m_Plane.SetCoords(equation);
    }

    std::size_t GetHash() const { return m_Hash; }
    bool IsSame(const ZULMRSBSPCartesianPlane& plane) const
    {
        return ZULMRSBSPPredicates::ArePlanesCoincident(m_Plane, plane) == ZULMRSExtendedTrue &&
               ZULMRSBSPPredicates::CoincidentOrientation(m_Plane, plane) == ZULMRSExtendedTrue;
    }

    /// Must not depend on how the calling thread rounds.
    static std::size_t OfEquation(const std::array<double, 4>& coords)
    {
        const ZULExpFloatScope defaultRounding;
        const ZULMRSBSPScaledNorm norm(coords[0], coords[1], coords[2]);
        if (!(norm.m_Value > 0.0 && std::isfinite(norm.m_Value))) {
            return 0;
        }
        const DirectionCode direction(norm.Divide(coords[0]), norm.Divide(coords[1]), norm.Divide(coords[2]));
        return static_cast<std::size_t>((OffsetTerm(norm.Divide(coords[3])) << 48U) |
                                        (direction.m_Byte1 << 40U) | (direction.m_Byte0 << 32U) |
                                        direction.m_Code);
    }

private:
    /// The place of the offset in the hash, multiplied by zero: planes of one direction must not be spread.
    static std::uint64_t OffsetTerm(double offset)
    {
        const double term = offset * 0.0 * 65535.0;
        return std::isfinite(term) ? static_cast<std::uint64_t>(static_cast<std::int32_t>(term)) & 0xFFFFU
                                   : 0U;
    }

    ZULMRSBSPCartesianPlane m_Plane;
    std::size_t m_Hash;
};
}  // namespace ZULMRSBSPPlaneIdentity

#endif
