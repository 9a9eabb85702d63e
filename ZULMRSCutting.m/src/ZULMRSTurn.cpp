#include "ZULMRSTurn.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "ZULExpRounding.h"

namespace
{
// The array of a pair, owned by the answer in any case; null when the object cannot deliver.
template <class Number>
std::unique_ptr<const std::array<Number, 4>> Own(const ZULMRSBSPQuadruple<Number>& quadruple)
{
    const auto [numbers, isOwned] = quadruple;
    if (numbers == nullptr || isOwned) {
        return std::unique_ptr<const std::array<Number, 4>>(numbers);
    }
    return std::make_unique<const std::array<Number, 4>>(*numbers);
}

// Twice the area of the projected triangle times the three denominators; degree 1 in each point's numbers.
template <class Number>
Number TurnDeterminant(const std::array<Number, 4>& p, const std::array<Number, 4>& q,
                       const std::array<Number, 4>& r, std::size_t u, std::size_t v)
{
    return p[u] * (q[v] * r[3] - q[3] * r[v]) - p[v] * (q[u] * r[3] - q[3] * r[u]) +
           p[3] * (q[u] * r[v] - q[v] * r[u]);
}
}  // namespace

ZULMRSTurnFrame ZULMRSMakeTurnFrame(const ZULMRSBSPPlane& plane, int orientation)
{
    const std::array<double, 4> rounded = plane.GetCoords();
    std::array<std::size_t, 3> axes{0, 1, 2};
    std::stable_sort(axes.begin(), axes.end(), [&](std::size_t a, std::size_t b) {
        return std::fabs(rounded[a]) > std::fabs(rounded[b]);
    });
    const auto exact = Own(plane.GetStdEquation_FloatRing());
    for (const std::size_t axis : axes) {
        const int sign = exact != nullptr ? (*exact)[axis].Sign() : 0;
        if (sign != 0) {
            return {(axis + 1) % 3, (axis + 2) % 3, sign * (orientation > 0 ? 1 : -1)};
        }
    }
    return {};
}

template <class Number>
const std::array<Number, 4>* ZULMRSTurn::Get(Store<Number>& store, std::uint32_t point)
{
    auto& slot = store[point];
    if (slot == nullptr) {
        slot = Own(m_Points[point]->GetCartesianRepresentationTpl<Number>());
    }
    return slot.get();
}

// The sign, or ZULExpSignUncertain where the arithmetic cannot tell.
template <class Number>
int ZULMRSTurn::StagedSign(Store<Number>& store, const ZULMRSTurnFrame& frame, std::uint32_t p,
                           std::uint32_t q, std::uint32_t r)
{
    const std::array<const std::array<Number, 4>*, 3> points{Get(store, p), Get(store, q), Get(store, r)};
    int denominators = frame.m_Sign;
    for (const auto* point : points) {
        const int sign = point != nullptr ? (*point)[3].Sign() : ZULExpSignUncertain;
        if (sign == ZULExpSignUncertain) {
            return ZULExpSignUncertain;
        }
        denominators *= sign;
    }
    const int sign = TurnDeterminant(*points[0], *points[1], *points[2], frame.m_U, frame.m_V).Sign();
    return sign == ZULExpSignUncertain ? ZULExpSignUncertain : sign * denominators;
}

int ZULMRSTurn::Sign(const ZULMRSTurnFrame& frame, std::uint32_t p, std::uint32_t q, std::uint32_t r)
{
    int sign = ZULExpSignUncertain;
    {
        const ZULExpRounding rounding;
        sign = StagedSign(m_Intervals, frame, p, q, r);
    }
    if (sign == ZULExpSignUncertain) {
        sign = StagedSign(m_Exact, frame, p, q, r);
    }
    return sign == ZULExpSignUncertain ? 0 : sign;
}
