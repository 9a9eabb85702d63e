#ifndef ZULMRSBSPPlaneIdentity_h
#define ZULMRSBSPPlaneIdentity_h

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "ZULMRSBSPHash.h"
#include "ZULMRSBSPPlane.h"
#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPScaledNorm.h"

/// The two ways in which the plane factory recognises a plane: hash and equality of each.
namespace ZULMRSBSPPlaneIdentity
{
/// Planes are the same when their four coefficients are equal.
struct ExactHash {
    std::size_t operator()(const ZULMRSBSPPlane* plane) const
    {
        const std::array<double, 4> coords = plane->GetCoords();
        return ZULMRSBSPHash::OfDoubles(coords[0], coords[1], coords[2], coords[3]);
    }
};

struct ExactEqual {
    bool operator()(const ZULMRSBSPPlane* p, const ZULMRSBSPPlane* q) const
    {
        return p->GetCoords() == q->GetCoords();
    }
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
/// of the normal alone, so that all planes of one direction share a bucket and the exact predicates decide.
struct GeometricHash {
    std::size_t operator()(const ZULMRSBSPPlane* plane) const { return OfEquation(plane->GetCoords()); }

    static std::size_t OfEquation(const std::array<double, 4>& coords)
    {
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
};

struct GeometricEqual {
    bool operator()(const ZULMRSBSPPlane* p, const ZULMRSBSPPlane* q) const
    {
        return ZULMRSBSPPredicates::ArePlanesCoincident(*p, *q) == ZULMRSExtendedTrue &&
               ZULMRSBSPPredicates::CoincidentOrientation(*p, *q) == ZULMRSExtendedTrue;
    }
};
}  // namespace ZULMRSBSPPlaneIdentity

#endif
