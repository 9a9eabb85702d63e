#include "ZULMRSPlace.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
/// What the rounding of a kept number amounts to at most; see ZULExpDynamic.
double ErrorOf(const ZULExpDynamic& number)
{
    return static_cast<double>(number.GetCount() + 2U) * std::numeric_limits<double>::epsilon() *
           number.GetMagnitude() * 0.5;
}
}  // namespace

/// The quotients by W and a bound of their errors, with room for its own rounding.
ZULMRSPlace ZULMRSPlace::OfNumbers(const std::array<ZULExpDynamic, 4>& numbers)
{
    const double w = numbers[3].GetValue();
    const double errorOfW = ErrorOf(numbers[3]);
    const double least = w - errorOfW;
    bool isKnown = least >= LeastW;
    ZULMRSPlace place;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double value = numbers[axis].GetValue() / w;
        const double error = (ErrorOf(numbers[axis]) + std::fabs(value) * errorOfW) / least;
        const double withRoom = error * (1.0 + 1e-9) + std::fabs(value) * 1e-15 + Underflow;
        isKnown = isKnown && std::isfinite(value) && std::isfinite(withRoom);
        place.m_At[axis] = value;
        place.m_Error = std::max(place.m_Error, withRoom);
    }
    return isKnown ? place : ZULMRSPlace{{}, std::numeric_limits<double>::infinity()};
}

ZULMRSPlace ZULMRSPlace::Of(const ZULMRSBSPPoint& point)
{
    if (point.GetType() == ZULMRSBSPPointType_Cartesian) {
        return {point.GetApproximatedXYZ(), 0.0};
    }
    const auto [numbers, isOwned] = point.GetCartesianRepresentation_ExpDynamic();
    const bool isKnown = numbers != nullptr && !(*numbers)[3].IsPlaceholder();
    const ZULMRSPlace place =
        isKnown ? OfNumbers(*numbers) : ZULMRSPlace{{}, std::numeric_limits<double>::infinity()};
    if (isOwned) {
        delete numbers;
    }
    return place;
}
