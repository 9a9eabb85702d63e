#ifndef ZULMRSPlace_h
#define ZULMRSPlace_h

#include <array>
#include <cmath>
#include <limits>

#include "ZULMRSBSPPoint.h"

/// Where a point lies: no coordinate is further from the true one than the error, which is infinite where the
/// point's kept numbers tell nothing. The error has room for one more rounding: the coordinates less and plus
/// the error, as doubles, enclose the true ones.
///
/// The bounds here and of what is computed from places hold in the default floating-point environment; the
/// cutter works in it. Their proof is in docs/arithmetic.md, "The cutter's doubles".
struct ZULMRSPlace {
    /// A W that is not certainly at least this tells nothing.
    static constexpr double LeastW = 0x1p-600;
    /// More than what underflow can do to a quotient by such a W, and to its error.
    static constexpr double Underflow = 0x1p-450;

    std::array<double, 3> m_At{};
    double m_Error = 0.0;

    static ZULMRSPlace Of(const ZULMRSBSPPoint& point);
    /// Of numbers (X, Y, Z, W) that met no fault of the status when they were made.
    static ZULMRSPlace OfNumbers(const std::array<ZULExpDynamic, 4>& numbers);
};

/// The value of a plane's equation, given in doubles, at places that are known to within an error.
class ZULMRSHeightFunction
{
public:
    /// Rounding units (half an epsilon) of the magnitude that cover the roundings of the value and of the
    /// bound; the smallest normal numbers that cover underflow; the room for rounding in what the place's
    /// error amounts to.
    static constexpr double Units = 16.0;
    static constexpr double Normals = 16.0;
    static constexpr double Room = 1.001;

    /// The equation's terms in the order in which value and magnitude add them.
    template <class Number>
    static Number Sum(const Number& x, const Number& y, const Number& z, const Number& offset)
    {
        return x + y + (z + offset);
    }

    explicit ZULMRSHeightFunction(const std::array<double, 4>& equation)
        : m_Equation(equation),
          m_Steepness(std::fabs(equation[0]) + std::fabs(equation[1]) + std::fabs(equation[2]))
    {
    }

    struct Height {
        double m_Value;
        double m_Error;  // not less than what the value is off; may be infinite or not a number
    };
    Height operator()(const ZULMRSPlace& place) const
    {
        const double x = m_Equation[0] * place.m_At[0];
        const double y = m_Equation[1] * place.m_At[1];
        const double z = m_Equation[2] * place.m_At[2];
        const double magnitude = Sum(std::fabs(x), std::fabs(y), std::fabs(z), std::fabs(m_Equation[3]));
        return {Sum(x, y, z, m_Equation[3]),
                Room * (m_Steepness * place.m_Error) +
                    0.5 * Units * std::numeric_limits<double>::epsilon() * magnitude +
                    Normals * std::numeric_limits<double>::min()};
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
