#include "ZULExpInterval.h"

namespace
{
double MiddleOfFinite(double lower, double upper)
{
    const ZULExpFloatScope scope;
    ZULExpProcessor::Pin(lower);
    ZULExpProcessor::Pin(upper);
    // Halved first: the sum could overflow. Halving denormals may round to the outside.
    double middle = lower * 0.5 + upper * 0.5;
    middle = middle < lower ? lower : middle;
    middle = middle > upper ? upper : middle;
    ZULExpProcessor::Pin(middle);
    return middle;
}
}  // namespace

double ZULExpInterval::Estimate() const
{
    const double lower = LowerBound();
    const double upper = UpperBound();
    if (Bits(lower) == Bits(upper)) {
        return upper;
    }
    if (IsInfinite(lower)) {
        return IsInfinite(upper) ? 0.0 : upper;
    }
    return IsInfinite(upper) ? lower : MiddleOfFinite(lower, upper);
}
