#include "ZULMRSPointLocation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>

namespace
{
using Location = std::array<double, 3>;

/// Errors up to this part of the largest coordinate are taken as they are.
constexpr double AcceptedError = 1e-12;

/// Frees the numbers when they are the caller's.
template <class Number>
class Numbers
{
public:
    explicit Numbers(const ZULMRSBSPQuadruple<Number>& pair)
        : m_Numbers(std::get<0>(pair)), m_Owned(std::get<1>(pair) ? m_Numbers : nullptr)
    {
    }
    explicit operator bool() const { return m_Numbers != nullptr; }
    const Number& operator[](std::size_t i) const { return (*m_Numbers)[i]; }

private:
    const std::array<Number, 4>* m_Numbers;
    std::unique_ptr<const std::array<Number, 4>> m_Owned;
};

double ErrorOf(const ZULExpDynamic& number)
{
    return static_cast<double>(number.GetCount() + 2U) * std::numeric_limits<double>::epsilon() *
           number.GetMagnitude() * 0.5;
}

/// False when rounding may have cost too much.
bool LocateByFilter(const ZULMRSBSPPoint& point, Location& location)
{
    const Numbers<ZULExpDynamic> numbers(point.GetCartesianRepresentation_ExpDynamic());
    if (!numbers || numbers[3].IsPlaceholder() || numbers[3].Sign() != ZULExpSignPositive) {
        return false;
    }
    const double w = numbers[3].GetValue();
    double greatest = 0.0;
    double error = 0.0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        location[axis] = numbers[axis].GetValue() / w;
        greatest = std::max(greatest, std::fabs(location[axis]));
        error = std::max(error, ErrorOf(numbers[axis]));
    }
    error = (error + greatest * ErrorOf(numbers[3])) / w;
    return std::isfinite(greatest) && error <= AcceptedError * greatest;
}

/// Exponents are kept apart: the numbers may be out of the range of a double where their quotient is not.
double Divide(const ZULExpFloatRingExtensionTS& x, const ZULExpFloatRingExtensionTS& w)
{
    constexpr std::int64_t Largest = 5000;
    double mantissas[2];
    std::int64_t exponents[2];
    x.GetInteger().ConvertToDouble(mantissas[0], exponents[0]);
    w.GetInteger().ConvertToDouble(mantissas[1], exponents[1]);
    const double quotient =
        (x.Sign() < 0) != (w.Sign() < 0) ? -mantissas[0] / mantissas[1] : mantissas[0] / mantissas[1];
    const std::int64_t exponent = exponents[0] + x.GetExponent() - exponents[1] - w.GetExponent();
    return x.IsZero() ? 0.0 : std::ldexp(quotient, static_cast<int>(std::clamp(exponent, -Largest, Largest)));
}

bool LocateExactly(const ZULMRSBSPPoint& point, Location& location)
{
    const Numbers<ZULExpFloatRingExtensionTS> numbers(point.GetCartesianRepresentation_FloatRing());
    if (!numbers || numbers[3].IsZero()) {
        return false;
    }
    for (std::size_t axis = 0; axis < 3; ++axis) {
        location[axis] = Divide(numbers[axis], numbers[3]);
    }
    return true;
}
}  // namespace

ZULMathPoint ZULMRSLocatePoint(const ZULMRSBSPPoint& point)
{
    Location location;
    if (point.GetType() == ZULMRSBSPPointType_Cartesian ||
        (!LocateByFilter(point, location) && !LocateExactly(point, location))) {
        location = point.GetApproximatedXYZ();
    }
    return {location[0], location[1], location[2]};
}
