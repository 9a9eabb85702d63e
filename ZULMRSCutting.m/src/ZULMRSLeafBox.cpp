#include "ZULMRSLeafBox.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
constexpr double Infinity = std::numeric_limits<double>::infinity();

/// What the rounding of a kept number amounts to at most; see ZULExpDynamic.
double ErrorOf(const ZULExpDynamic& number)
{
    return static_cast<double>(number.GetCount() + 2U) * std::numeric_limits<double>::epsilon() *
           number.GetMagnitude() * 0.5;
}

/// The quotient of two kept numbers, the second certainly positive, and a bound of its error with room for
/// its own rounding.
struct Quotient {
    double m_Value;
    double m_Error;

    Quotient(const ZULExpDynamic& numerator, const ZULExpDynamic& denominator)
    {
        const double least = denominator.GetValue() - ErrorOf(denominator);
        m_Value = numerator.GetValue() / denominator.GetValue();
        const double error = (ErrorOf(numerator) + std::fabs(m_Value) * ErrorOf(denominator)) / least;
        m_Error = error * (1.0 + 1e-9) + std::fabs(m_Value) * 1e-15 + std::numeric_limits<double>::min();
        if (!(least > 0.0 && std::isfinite(m_Value) && std::isfinite(m_Error))) {
            m_Value = 0.0;
            m_Error = Infinity;
        }
    }
};

void Include(ZULMRSLeafBox& box, const ZULMRSBSPPoint& point)
{
    if (point.GetType() == ZULMRSBSPPointType_Cartesian) {
        const std::array<double, 3> coordinates = point.GetApproximatedXYZ();
        for (std::size_t axis = 0; axis < 3; ++axis) {
            box.m_Low[axis] = std::min(box.m_Low[axis], coordinates[axis]);
            box.m_High[axis] = std::max(box.m_High[axis], coordinates[axis]);
        }
        return;
    }
    const auto [numbers, isOwned] = point.GetCartesianRepresentation_ExpDynamic();
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const bool isKnown = numbers != nullptr && !(*numbers)[3].IsPlaceholder();
        const Quotient quotient = isKnown ? Quotient((*numbers)[axis], (*numbers)[3])
                                          : Quotient(ZULExpDynamic(0.0), ZULExpDynamic(0.0));
        box.m_Low[axis] = std::min(box.m_Low[axis], quotient.m_Value - quotient.m_Error);
        box.m_High[axis] = std::max(box.m_High[axis], quotient.m_Value + quotient.m_Error);
    }
    if (isOwned) {
        delete numbers;
    }
}
}  // namespace

ZULMRSLeafBox ZULMRSLeafBox::Around(const std::vector<ZULMRSBSPPoint*>& vertices)
{
    ZULMRSLeafBox box{{Infinity, Infinity, Infinity}, {-Infinity, -Infinity, -Infinity}};
    for (const ZULMRSBSPPoint* point : vertices) {
        Include(box, *point);
    }
    return box;
}

ZULMRSLeafBox::Position ZULMRSLeafBox::Locate(const std::array<double, 4>& equation) const
{
    double least = equation[3];
    double greatest = equation[3];
    double magnitude = std::fabs(equation[3]);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double atLow = equation[axis] * m_Low[axis];
        const double atHigh = equation[axis] * m_High[axis];
        least += std::min(atLow, atHigh);
        greatest += std::max(atLow, atHigh);
        magnitude += std::max(std::fabs(atLow), std::fabs(atHigh));
    }
    // Seven roundings of terms bounded by the magnitude, each by half an epsilon, doubled for the bound's own
    // roundings; the smallest normal number covers underflow. A bound that is not a number decides nothing.
    const double bound =
        8.0 * std::numeric_limits<double>::epsilon() * magnitude + std::numeric_limits<double>::min();
    if (least > bound) {
        return Position::InFront;
    }
    return greatest < -bound ? Position::Behind : Position::Unknown;
}

std::size_t ZULMRSLeafBox::LongestAxis() const
{
    std::size_t longest = 0;
    for (std::size_t axis = 1; axis < 3; ++axis) {
        if (Length(axis) > Length(longest)) {
            longest = axis;
        }
    }
    return longest;
}

double ZULMRSLeafBox::Middle(std::size_t axis) const
{
    const double middle = m_Low[axis] + 0.5 * Length(axis);
    const double step = std::exp2(std::floor(std::log2(Length(axis))) - 3.0);
    const double rounded = std::nearbyint(middle / step) * step;
    return rounded > m_Low[axis] && rounded < m_High[axis] ? rounded : middle;
}
