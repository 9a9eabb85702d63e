#ifndef ZULMRSBSPStages_h
#define ZULMRSBSPStages_h

#include <cstddef>

#include "ZULExpDynamic.h"
#include "ZULExpFloatRingExtensionTS.h"
#include "ZULExpFloatStatus.h"
#include "ZULExpInterval.h"
#include "ZULMRSBSPFilter.h"
#include "ZULMRSBSPSign.h"
#include "ZULMRSBSPStageCounters.h"

/// The floating-point environment in which an arithmetic computes, with no flag raised. Stands inside a
/// ZULExpFloatScope, which has read the caller's control word once and puts it back at the end: here the word
/// is only written.
template <class Number>
class ZULMRSBSPEnvironment
{
public:
    ZULMRSBSPEnvironment() { ZULExpProcessor::SetDefaultControlWord(); }
};

template <>
class ZULMRSBSPEnvironment<ZULExpInterval>
{
public:
    ZULMRSBSPEnvironment() { ZULExpProcessor::SetUpwardControlWord(); }
    ~ZULMRSBSPEnvironment() { ZULExpProcessor::SetDefaultControlWord(); }
    ZULMRSBSPEnvironment(const ZULMRSBSPEnvironment&) = delete;
    ZULMRSBSPEnvironment& operator=(const ZULMRSBSPEnvironment&) = delete;
};

/// The chain that every decision goes through: stages of rising cost, the first that decides ends it.
namespace ZULMRSBSPStages
{
/// Sign of a sum of products of inputs or kept numbers.
inline ZULMRSBSPSign SignOf(const ZULExpDynamic& x)
{
    return ZULMRSBSPFilter::Decide(x.GetValue(), x.GetMagnitude(), ZULMRSBSPFilter::UnitsOf(x));
}
/// Sign of a polynomial in which products are multiplied again, so that an early underflow may have grown.
inline ZULMRSBSPSign SignOfDeep(const ZULExpDynamic& x)
{
    return ZULMRSBSPFilter::DecideByStatus(x.GetValue(), x.GetMagnitude(), ZULMRSBSPFilter::UnitsOf(x));
}
inline ZULMRSBSPSign SignOf(const ZULExpInterval& x)
{
    return ZULMRSBSPSign::FromNumber(x.Sign());
}
inline ZULMRSBSPSign SignOfDeep(const ZULExpInterval& x)
{
    return SignOf(x);
}
inline ZULMRSBSPSign SignOf(const ZULExpFloatRingExtensionTS& x)
{
    return ZULMRSBSPSign::FromNumber(x.Sign());
}
inline ZULMRSBSPSign SignOfDeep(const ZULExpFloatRingExtensionTS& x)
{
    return SignOf(x);
}

/// The stage that computes in an arithmetic.
template <class Number>
constexpr ZULMRSBSPStage StageOf = ZULMRSBSPStage::Filter;
template <>
inline constexpr ZULMRSBSPStage StageOf<ZULExpInterval> = ZULMRSBSPStage::Interval;
template <>
inline constexpr ZULMRSBSPStage StageOf<ZULExpFloatRingExtensionTS> = ZULMRSBSPStage::Exact;

/// The sign, counted for the stage when it is decided.
inline ZULMRSBSPSign Counted(ZULMRSBSPStage stage, ZULMRSBSPSign sign)
{
    if (sign.IsDecided()) {
        ZULMRSBSPStageCounters::Count(stage);
    }
    return sign;
}

/// The stage of a decision by kept integers: a filter where these are off by something.
constexpr ZULMRSBSPStage StageOfIntegers(bool areExact)
{
    return areExact ? ZULMRSBSPStage::Exact : ZULMRSBSPStage::Filter;
}

/// One stage: what evaluate() says of the sign, in the environment of its arithmetic. An interval or exact
/// stage that met underflow, overflow or a denormal operand is undecided; the floating stage sees to that
/// itself, where it decides.
template <class Number, class Evaluate>
ZULMRSBSPSign Run(const Evaluate& evaluate)
{
    const ZULMRSBSPEnvironment<Number> environment;
    int result = evaluate().ToKernelResult();
    ZULExpProcessor::Pin(result);
    return Counted(StageOf<Number>, ZULMRSBSPSign::FromNumber(result));
}
template <class Number, class Evaluate>
ZULMRSBSPSign RunChecked(const Evaluate& evaluate)
{
    return Run<Number>([&evaluate] {
        int result = evaluate().ToKernelResult();
        ZULExpProcessor::Pin(result);
        return (_statusfp() & ZULExpFloatFault) != 0 ? ZULMRSBSPSign::Undecided()
                                                     : ZULMRSBSPSign::FromNumber(result);
    });
}

/// Runs the stages in order until one decides.
template <class Stage, class... Others>
ZULMRSBSPSign FirstDecided(const Stage& stage, const Others&... others)
{
    const ZULMRSBSPSign sign = stage();
    if constexpr (sizeof...(others) == 0) {
        return sign;
    } else {
        return sign.IsDecided() ? sign : FirstDecided(others...);
    }
}
}  // namespace ZULMRSBSPStages

#endif
