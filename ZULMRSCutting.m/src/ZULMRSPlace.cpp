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

/// The quotients of kept numbers by the last one, which is certainly positive, and a bound of their errors
/// with room for its own rounding.
ZULMRSPlace Divide(const std::array<ZULExpDynamic, 4>& numbers)
{
    const double w = numbers[3].GetValue();
    const double errorOfW = ErrorOf(numbers[3]);
    const double least = w - errorOfW;
    ZULMRSPlace place;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double value = numbers[axis].GetValue() / w;
        const double error = (ErrorOf(numbers[axis]) + std::fabs(value) * errorOfW) / least;
        place.m_At[axis] = value;
        place.m_Error = std::max(place.m_Error, error * (1.0 + 1e-9) + std::fabs(value) * 1e-15 +
                                                    std::numeric_limits<double>::min());
    }
    const bool isKnown = least > 0.0 && std::isfinite(place.m_At[0]) && std::isfinite(place.m_At[1]) &&
                         std::isfinite(place.m_At[2]) && std::isfinite(place.m_Error);
    return isKnown ? place : ZULMRSPlace{{}, std::numeric_limits<double>::infinity()};
}
}  // namespace

ZULMRSPlace ZULMRSPlace::Of(const ZULMRSBSPPoint& point)
{
    if (point.GetType() == ZULMRSBSPPointType_Cartesian) {
        return {point.GetApproximatedXYZ(), 0.0};
    }
    const auto [numbers, isOwned] = point.GetCartesianRepresentation_ExpDynamic();
    const bool isKnown = numbers != nullptr && !(*numbers)[3].IsPlaceholder();
    const ZULMRSPlace place =
        isKnown ? Divide(*numbers) : ZULMRSPlace{{}, std::numeric_limits<double>::infinity()};
    if (isOwned) {
        delete numbers;
    }
    return place;
}
