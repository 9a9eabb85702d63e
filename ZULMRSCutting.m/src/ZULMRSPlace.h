#ifndef ZULMRSPlace_h
#define ZULMRSPlace_h

#include <array>
#include <cmath>
#include <limits>

#include "ZULMRSBSPPoint.h"

/// Where a point lies: no coordinate is further from the true one than the error, which is infinite where the
/// point's kept numbers tell nothing.
struct ZULMRSPlace {
    std::array<double, 3> m_At{};
    double m_Error = 0.0;

    static ZULMRSPlace Of(const ZULMRSBSPPoint& point);
};

/// The value of a plane's equation, given in doubles, at places that are known to within an error.
class ZULMRSHeightFunction
{
public:
    explicit ZULMRSHeightFunction(const std::array<double, 4>& equation)
        : m_Equation(equation),
          m_Steepness(std::fabs(equation[0]) + std::fabs(equation[1]) + std::fabs(equation[2]))
    {
    }

    struct Height {
        double m_Value;
        double m_Error;  // not less than what the value is off; may be infinite or not a number
    };
    /// Six roundings of terms bounded by the magnitude, each by an epsilon in the worst mode, and room for
    /// the bound's own roundings; the smallest normal number covers underflow.
    Height operator()(const ZULMRSPlace& place) const
    {
        const double x = m_Equation[0] * place.m_At[0];
        const double y = m_Equation[1] * place.m_At[1];
        const double z = m_Equation[2] * place.m_At[2];
        const double magnitude = std::fabs(x) + std::fabs(y) + (std::fabs(z) + std::fabs(m_Equation[3]));
        return {x + y + (z + m_Equation[3]), 1.001 * m_Steepness * place.m_Error +
                                                 8.0 * std::numeric_limits<double>::epsilon() * magnitude +
                                                 16.0 * std::numeric_limits<double>::min()};
    }
    /// 1 in front, -1 behind, 0 not known. An error that is not a number decides nothing.
    int SideOf(const ZULMRSPlace& place) const
    {
        const Height height = (*this)(place);
        return static_cast<int>(height.m_Value > height.m_Error) -
               static_cast<int>(height.m_Value < -height.m_Error);
    }

private:
    std::array<double, 4> m_Equation;
    double m_Steepness;  // what an error in each coordinate is multiplied by at most
};

#endif
