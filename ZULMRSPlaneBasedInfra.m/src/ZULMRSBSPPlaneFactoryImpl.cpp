#include "ZULMRSBSPPlaneFactoryImpl.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <new>

#include "ZULExpFloatStatus.h"
#include "ZULMRSBSPFactoryReport.h"
#include "ZULMRSBSPObjectFactory.h"
#include "ZULMRSBSPReport.h"

namespace
{
constexpr double DefaultGridStep = 1e-05;
constexpr double SmallestGridStep = 1e-12;
constexpr double SmallestNorm = 1e-12;
/// What a coordinate may count in grid steps.
constexpr double LargestNbSteps = 2147483646.0;
constexpr std::size_t NbPlanesExpected = 10;

constexpr const char* Source = "ZULMRSBSPPlaneFactoryImpl";
constexpr const char* SetGriddingToleranceName = "ZULMRSBSPPlaneFactoryImpl::SetGriddingTolerance";
constexpr const char* QuantizePlaneEquationName = "ZULMRSBSPPlaneFactoryImpl::QuantizePlaneEquation";
constexpr ZULMRSBSPReport::Place ExtentTooLarge = {SetGriddingToleranceName, Source, 312};
constexpr ZULMRSBSPReport::Place DiagonalTooLarge = {SetGriddingToleranceName, Source, 319};
constexpr ZULMRSBSPReport::Place NormalTooShort = {QuantizePlaneEquationName, Source, 334};
constexpr ZULMRSBSPReport::Place EquationTooShort = {QuantizePlaneEquationName, Source, 378};

bool IsFiniteAndPositive(double value)
{
    return std::isfinite(value) && value > 0.0;
}

bool FitsInt64(double value)
{
    return value >= -0x1p63 && value < 0x1p63;
}

/// The nearest multiple of the step; the coefficient itself where it counts too many steps.
double Snap(double coefficient, double step)
{
    const double nbSteps = std::floor(coefficient / step + 0.5);
    return FitsInt64(nbSteps) ? static_cast<double>(static_cast<std::int64_t>(nbSteps)) * step : coefficient;
}

/// Number of steps, none longer than the tolerance, that divide the length evenly.
double NbStepsWithin(double length, double tolerance)
{
    const auto nbSteps = static_cast<std::int64_t>(std::ceil(length / tolerance));
    return static_cast<double>(std::max<std::int64_t>(nbSteps, 1));
}

ZULMRSErrorTypes RefuseGridding(const ZULMRSBSPReport::Place& place)
{
    ZULMRSBSPReport::Error(place, "Gridding Tol Too Tight or Box too wide !!");
    return ZULMRSErrorGriddingTolerance;
}

std::array<double, 4> DividedBy(const std::array<double, 4>& equation, const ZULMRSBSPScaledNorm& norm)
{
    return {norm.Divide(equation[0]), norm.Divide(equation[1]), norm.Divide(equation[2]),
            norm.Divide(equation[3])};
}

bool HasNormal(const std::array<double, 4>& equation)
{
    return equation[0] != 0.0 || equation[1] != 0.0 || equation[2] != 0.0;
}

/// Reports a normal that is too short to be normalised.
bool IsTooShort(const ZULMRSBSPScaledNorm& norm, const ZULMRSBSPReport::Place& place)
{
    const double length = norm.Length();
    if (!(length < SmallestNorm)) {
        return false;
    }
    ZULMRSBSPReport::Error(place, "Plane Equation Norm of Axis is Very Small ! Norm=", length);
    return true;
}

template <class Set>
void ReleaseAll(Set& planes)
{
    for (ZULMRSBSPPlane* plane : planes) {
        ZULMRSBSPPlane::ReleaseObject(plane);
    }
    planes.clear();
}

/// Drops what nobody else holds.
template <class Set>
void DropUnused(Set& planes)
{
    for (auto entry = planes.begin(); entry != planes.end();) {
        ZULMRSBSPPlane* const plane = *entry;
        if (plane != nullptr && plane->GetRefCount() > 0) {
            ++entry;
            continue;
        }
        entry = planes.erase(entry);
        ZULMRSBSPPlane::ReleaseObject(plane);
    }
}
}  // namespace

ZULMRSBSPPlaneFactory* ZULMRSCreatePlaneFactory(bool geometricIdentity)
{
    return new (std::nothrow) ZULMRSBSPPlaneFactoryImpl(geometricIdentity);
}

ZULMRSBSPPlaneFactoryImpl::ZULMRSBSPPlaneFactoryImpl(bool geometricIdentity)
    : m_SearchPlane(new (std::nothrow) ZULMRSBSPCartesianPlane({1.0, 0.0, 0.0, 0.0})),
      m_IsGeometric(geometricIdentity)
{
    m_GridSteps.fill(DefaultGridStep);
    m_ExactSet.reserve(NbPlanesExpected);
    m_GeometricSet.reserve(NbPlanesExpected);
}

ZULMRSBSPPlaneFactoryImpl::~ZULMRSBSPPlaneFactoryImpl()
{
    ZULKLOOutput::GetOut() << ZULMRSBSPFactoryReport::Statistics{"ZULMRSBSPPlaneFactory", "Planes",
                                                                 m_NbPlanesRequired, m_NbPlanesReused,
                                                                 ZULMRSBSPPlaneFactoryImpl::Size()};
    ReleaseAll(m_GeometricSet);
    ReleaseAll(m_ExactSet);
    ZULMRSBSPPlane::ReleaseObject(m_SearchPlane);
}

ZULMRSErrorTypes ZULMRSBSPPlaneFactoryImpl::SetGriddingTolerance(const ZULMathOBB& box, double tolerance)
{
    const ZULExpFloatScope defaultRounding;
    const ZULMathVector& extents = box.GetExtents();
    const double largest = std::max(std::max(extents.x, extents.y), extents.z);
    const ZULMRSBSPScaledNorm diagonal(extents.x, extents.y, extents.z);
    // The comparisons are made in the diagonal's scale, where neither side overflows.
    const double scaledTolerance = diagonal.Scaled(tolerance);
    const double limit = scaledTolerance * LargestNbSteps;
    if (!IsFiniteAndPositive(tolerance) || !IsFiniteAndPositive(largest) ||
        !std::isfinite(diagonal.m_Value) || diagonal.Scaled(largest) >= limit) {
        return RefuseGridding(ExtentTooLarge);
    }
    m_GridSteps[3] = largest / NbStepsWithin(largest, tolerance);
    if (diagonal.m_Value >= limit) {
        return RefuseGridding(DiagonalTooLarge);
    }
    std::fill_n(m_GridSteps.begin(), 3, 1.0 / NbStepsWithin(diagonal.m_Value, scaledTolerance));
    return ZULMRSNoError;
}

std::array<double, 4> ZULMRSBSPPlaneFactoryImpl::Normalized(const std::array<double, 4>& equation,
                                                            const ZULMRSBSPScaledNorm& norm) const
{
    const double length = norm.Length();
    const double unitTolerance = m_GridSteps[3];
    if (1.0 - unitTolerance > length || length > unitTolerance + 1.0) {
        return DividedBy(equation, norm);
    }
    return equation;
}

std::array<double, 4> ZULMRSBSPPlaneFactoryImpl::Snapped(const std::array<double, 4>& equation) const
{
    std::array<double, 4> snapped{};
    for (std::size_t i = 0; i < equation.size(); ++i) {
        snapped[i] = Snap(equation[i], m_GridSteps[i]);
    }
    return snapped;
}

std::array<double, 4> ZULMRSBSPPlaneFactoryImpl::OnGrid(const std::array<double, 4>& equation,
                                                        const ZULMRSBSPScaledNorm& norm) const
{
    const std::array<double, 4> snapped = Snapped(Normalized(equation, norm));
    // With a coarse offset step a short normal counts as unit and could be snapped away; the largest
    // component of one that is truly unit cannot.
    return HasNormal(snapped) ? snapped : Snapped(DividedBy(equation, norm));
}

bool ZULMRSBSPPlaneFactoryImpl::AreStepsTooSmall() const
{
    return std::any_of(m_GridSteps.begin(), m_GridSteps.end(),
                       [](double step) { return step < SmallestGridStep; });
}

bool ZULMRSBSPPlaneFactoryImpl::QuantizePlaneEquation(const std::array<double, 4>& in,
                                                      std::array<double, 4>& out) const
{
    const ZULMRSBSPScaledNorm norm(in[0], in[1], in[2]);
    if (IsTooShort(norm, EquationTooShort)) {
        return false;
    }
    out = AreStepsTooSmall() ? Normalized(in, norm) : OnGrid(in, norm);
    return true;
}

void ZULMRSBSPPlaneFactoryImpl::QuantizePlaneEquation(std::array<double, 4>& equation)
{
    const ZULExpFloatScope defaultRounding;
    const std::array<double, 4> normal = {equation[0], equation[1], equation[2], 0.0};
    const ZULMRSBSPScaledNorm norm(normal[0], normal[1], normal[2]);
    if (IsTooShort(norm, NormalTooShort) || AreStepsTooSmall()) {
        return;
    }
    const std::array<double, 4> snapped = OnGrid(normal, norm);
    std::copy_n(snapped.begin(), 3, equation.begin());
}

ZULMRSBSPPlane* ZULMRSBSPPlaneFactoryImpl::CreatePlane(const std::array<double, 4>& equation,
                                                       bool& isOpposite, unsigned int flags)
{
    // Threads that round differently must still agree on one plane and its hash.
    const ZULExpFloatScope defaultRounding;
    isOpposite = false;
    if (m_SearchPlane == nullptr) {
        return nullptr;
    }
    std::array<double, 4> key = equation;
    if ((flags & ZULMRSBSPCreatePlane_Quantize) != 0 && !QuantizePlaneEquation(equation, key)) {
        return nullptr;
    }
    const std::lock_guard guard(m_Lock);
    return FindOrCreate(key, isOpposite, (flags & ZULMRSBSPCreatePlane_AcceptOpposite) != 0);
}

ZULMRSBSPPlane* ZULMRSBSPPlaneFactoryImpl::FindOrCreate(const std::array<double, 4>& key, bool& isOpposite,
                                                        bool acceptOpposite)
{
    ++m_NbPlanesRequired;
    if (ZULMRSBSPPlane* const held = FindHeld(key)) {
        return held;
    }
    if (acceptOpposite) {
        if (ZULMRSBSPPlane* const held = FindHeld({-key[0], -key[1], -key[2], -key[3]})) {
            isOpposite = true;
            return held;
        }
    }
    return CreateHeld(key);
}

ZULMRSBSPPlane* ZULMRSBSPPlaneFactoryImpl::FindHeld(const std::array<double, 4>& key)
{
    m_SearchPlane->SetCoords(key);
    ZULMRSBSPPlane* const held = WithActiveSet([this](auto& planes) {
        const auto found = planes.find(m_SearchPlane);
        return found != planes.end() ? *found : nullptr;
    });
    if (held != nullptr) {
        ++m_NbPlanesReused;
        held->AddRef();
    }
    return held;
}

ZULMRSBSPPlane* ZULMRSBSPPlaneFactoryImpl::CreateHeld(const std::array<double, 4>& key)
{
    ZULMRSBSPPlane* const plane = new (std::nothrow) ZULMRSBSPCartesianPlane(key);
    if (plane == nullptr) {
        return nullptr;
    }
    try {
        WithActiveSet([plane](auto& planes) { planes.insert(plane); });
    } catch (const std::bad_alloc&) {
        plane->Release();
        return nullptr;
    }
    plane->AddRef();
    return plane;
}

std::uint64_t ZULMRSBSPPlaneFactoryImpl::Size()
{
    return WithActiveSet([](auto& planes) { return static_cast<std::uint64_t>(planes.size()); });
}

ZULMRSErrorTypes ZULMRSBSPPlaneFactoryImpl::Tass()
{
    const std::uint64_t before = Size();
    if (before == 0) {
        return ZULMRSNoError;
    }
    WithActiveSet([](auto& planes) { DropUnused(planes); });
    ZULKLOOutput::GetOut() << ZULMRSBSPFactoryReport::TassSummary{"ZULMRSBSPPlaneFactoryImpl", "Planes",
                                                                  before, Size()}
                           << "\n";
    return ZULMRSNoError;
}
