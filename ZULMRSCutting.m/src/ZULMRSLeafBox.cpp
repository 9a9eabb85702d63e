#include "ZULMRSLeafBox.h"

#include <algorithm>
#include <cmath>
#include <limits>

/// Of what Locate() sums, its own roundings included. A bound that is not a number decides nothing.
double ZULMRSLeafBox::BoundOfError(const std::array<double, 4>& equation) const
{
    double magnitude = std::fabs(equation[3]);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        magnitude +=
            std::max(std::fabs(equation[axis] * m_Low[axis]), std::fabs(equation[axis] * m_High[axis]));
    }
    return 8.0 * std::numeric_limits<double>::epsilon() * magnitude + std::numeric_limits<double>::min();
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
