#include "ZULMRSLeafBox.h"

#include <algorithm>
#include <cmath>
#include <limits>

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
