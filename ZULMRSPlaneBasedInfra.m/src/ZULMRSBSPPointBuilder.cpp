#include "ZULMRSBSPPointBuilder.h"

#include "ZULExpFloatStatus.h"
#include "ZULMRSBSPExactQuotient.h"
#include "ZULMRSBSPQuadrupleHolder.h"
#include "ZULMRSBSPReport.h"

namespace
{
constexpr const char* Function = "ZULMRSBSPPointBuilder::Run";
constexpr const char* Source = "ZULMRSBSPPointBuilder";
constexpr ZULMRSBSPReport::Place BigError = {Function, Source, 98};
constexpr ZULMRSBSPReport::Place GoingExact = {Function, Source, 106};
constexpr ZULMRSBSPReport::Place NoEquation = {Function, Source, 145};

constexpr double DefaultThreshold = 0.0001;

/// Inside a ZULExpFloatScope: denormals count, whatever the caller's processor makes of them.
bool IsGreater(double x, double y)
{
    ZULExpProcessor::Pin(x);
    int isGreater = static_cast<int>(x > y);
    ZULExpProcessor::Pin(isGreater);
    return isGreater != 0;
}

/// (X/W, Y/W, Z/W).
std::array<double, 3> Quotients(const std::array<ZULExpFloatRingExtensionTS, 4>& representation)
{
    const ZULExpFloatScope scope;
    std::array<double, 3> quotients{};
    for (std::size_t i = 0; i < quotients.size(); ++i) {
        quotients[i] = ZULMRSBSPExactQuotient::Of(representation[i], representation[3]);
        ZULExpProcessor::Pin(quotients[i]);
    }
    return quotients;
}
}  // namespace

ZULMRSBSPPointBuilder::ZULMRSBSPPointBuilder(const ZULMRSBSPPoint& point)
    : m_Point(point), m_MaxErrorThreshold(DefaultThreshold), m_Result{}, m_Error(0.0)
{
}

ZULMRSBSPPointBuilder::~ZULMRSBSPPointBuilder() = default;

void ZULMRSBSPPointBuilder::SetMaxErrorThresholdForQuickEval(double threshold)
{
    m_MaxErrorThreshold = threshold;
}

void ZULMRSBSPPointBuilder::Run(bool& unused, bool& isQuick)
{
    unused = false;
    isQuick = EvaluateQuickly();
    if (!isQuick) {
        EvaluateExactly();
    }
}

/// Whether the result stands.
bool ZULMRSBSPPointBuilder::EvaluateQuickly()
{
    const ZULMRSBSPQuadrupleHolder<double> approximation(m_Point.GetApproximatedXYZError());
    if (!approximation) {
        return true;
    }
    m_Result = {approximation[0], approximation[1], approximation[2]};
    m_Error = approximation[3];
    // Over the warning too: to write a number out is arithmetic, which the caller may have made to trap.
    const ZULExpFloatScope scope;
    if (!IsGreater(m_Error, m_MaxErrorThreshold)) {
        return true;
    }
    ZULMRSBSPReport::Warning(BigError, "PointBuilder Approximation Error is quite big : ", m_Error);
    return false;
}

void ZULMRSBSPPointBuilder::EvaluateExactly()
{
    ZULMRSBSPReport::Warning(GoingExact,
                             "ZULMRSBSPPointBuilder::Run Passage sur ZULExpFloatFieldExtensionTS !");
    const ZULMRSBSPQuadrupleHolder<ZULExpFloatRingExtensionTS> representation(
        m_Point.GetCartesianRepresentation_FloatRing());
    if (!representation) {
        ZULMRSBSPReport::Error(NoEquation, "GetCartesianRepresentation_FloatRing Give No Equation !!!");
        return;
    }
    m_Result = Quotients(*representation);
    m_Error = 0.0;
}

void ZULMRSBSPPointBuilder::GetResult(double& x, double& y, double& z) const
{
    x = m_Result[0];
    y = m_Result[1];
    z = m_Result[2];
}

void ZULMRSBSPPointBuilder::GetResult(ZULMathPoint& result) const
{
    GetResult(result.x, result.y, result.z);
}
