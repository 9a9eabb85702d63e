#include "ZULMRSBSPPlaneFactoryImpl.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <new>
#include <optional>
#include <type_traits>

#include "ZULExpFloatStatus.h"
#include "ZULMRSBSPFactoryReport.h"
#include "ZULMRSBSPNewCartesianPlane.h"
#include "ZULMRSBSPObjectFactory.h"
#include "ZULMRSBSPPlaneIdentity.h"
#include "ZULMRSBSPReport.h"

namespace
{
constexpr double DefaultGridStep = 1e-05;
constexpr double SmallestGridStep = 1e-12;
constexpr double SmallestNorm = 1e-12;
/// What a coordinate may count in grid steps.
constexpr double LargestNbSteps = 2147483646.0;

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

std::array<double, 4> Negated(const std::array<double, 4>& equation)
{
    return {-equation[0], -equation[1], -equation[2], -equation[3]};
}

/// A key and where its search among the held planes has come to.
template <class Key>
class Search
{
public:
    Search(const ZULMRSBSPHeldPlanes& planes, const ZULMRSBSPCartesianPlane& searchPlane,
           const std::array<double, 4>& equation)
        : m_Key(MakeKey(searchPlane, equation)), m_Place(planes.Find(m_Key))
    {
    }
    ZULMRSBSPCartesianPlane* GetPlane() const { return m_Place.m_Plane; }
    /// Looks at what has been added meanwhile, too.
    ZULMRSBSPCartesianPlane* Finish(const ZULMRSBSPHeldPlanes& planes)
    {
        planes.FindSince(m_Key, m_Place);
        return m_Place.m_Plane;
    }
    void Add(ZULMRSBSPHeldPlanes& planes, ZULMRSBSPCartesianPlane* plane)
    {
        planes.Add(plane, m_Key.GetHash(), m_Place);
    }

private:
    static Key MakeKey(const ZULMRSBSPCartesianPlane& searchPlane, const std::array<double, 4>& equation)
    {
        if constexpr (std::is_constructible_v<Key, const std::array<double, 4>&>) {
            return Key(equation);
        } else {
            return Key(searchPlane, equation);
        }
    }

    const Key m_Key;
    ZULMRSBSPHeldPlanes::Place m_Place;
};
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
}

ZULMRSBSPPlaneFactoryImpl::~ZULMRSBSPPlaneFactoryImpl()
{
    ZULKLOOutput::GetOut() << ZULMRSBSPFactoryReport::Statistics{"ZULMRSBSPPlaneFactory", "Planes",
                                                                 m_NbPlanesRequired, m_NbPlanesReused,
                                                                 ZULMRSBSPPlaneFactoryImpl::Size()};
    m_Planes.ForEach([](ZULMRSBSPPlane* plane) { plane->Release(); });
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
    // Threads that round differently must still agree on one plane and its hash.
    const ZULExpFloatScope defaultRounding;
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
    isOpposite = false;
    if (m_SearchPlane == nullptr) {
        return nullptr;
    }
    if ((flags & ZULMRSBSPCreatePlane_Quantize) == 0) {
        return FindOrCreate(equation, isOpposite, flags);
    }
    std::array<double, 4> quantized{};
    return QuantizePlaneEquation(equation, quantized) ? FindOrCreate(quantized, isOpposite, flags) : nullptr;
}

ZULMRSBSPPlane* ZULMRSBSPPlaneFactoryImpl::FindOrCreate(const std::array<double, 4>& equation,
                                                        bool& isOpposite, unsigned int flags)
{
    const bool acceptOpposite = (flags & ZULMRSBSPCreatePlane_AcceptOpposite) != 0;
    return m_IsGeometric
               ? FindOrCreate<ZULMRSBSPPlaneIdentity::GeometricKey>(equation, isOpposite, acceptOpposite)
               : FindOrCreate<ZULMRSBSPPlaneIdentity::ExactKey>(equation, isOpposite, acceptOpposite);
}

template <class Key>
ZULMRSBSPPlane* ZULMRSBSPPlaneFactoryImpl::FindOrCreate(const std::array<double, 4>& equation,
                                                        bool& isOpposite, bool acceptOpposite)
{
    // No plane goes while planes are created. So everything is looked for, and prepared, before the lock;
    // what has been found stays found, and under the lock only what was added meanwhile is looked at.
    Search<Key> same(m_Planes, *m_SearchPlane, equation);
    std::optional<Search<Key>> opposite;
    if (same.GetPlane() == nullptr && acceptOpposite) {
        opposite.emplace(m_Planes, *m_SearchPlane, Negated(equation));
    }
    ZULMRSBSPNewCartesianPlane prepared;
    if (same.GetPlane() == nullptr && (!opposite || opposite->GetPlane() == nullptr)) {
        prepared.Prepare(equation);
    }
    ZULMRSBSPCartesianPlane* plane = nullptr;
    {
        const std::lock_guard guard(m_Lock);
        ++m_NbPlanesRequired;
        plane = same.Finish(m_Planes);
        if (plane == nullptr && opposite) {
            plane = opposite->Finish(m_Planes);
            isOpposite = plane != nullptr;
        }
        if (plane != nullptr) {
            ++m_NbPlanesReused;
        } else if (prepared.IsReady() && m_Planes.Reserve()) {
            plane = prepared.Make(equation);
            same.Add(m_Planes, plane);
        }
    }
    if (plane != nullptr) {
        plane->AddRef();
    }
    return plane;
}

std::uint64_t ZULMRSBSPPlaneFactoryImpl::Size()
{
    return m_Planes.GetSize();
}

ZULMRSErrorTypes ZULMRSBSPPlaneFactoryImpl::Tass()
{
    const std::uint64_t before = Size();
    if (before == 0) {
        return ZULMRSNoError;
    }
    m_Planes.RemoveIf([](const ZULMRSBSPPlane& plane) { return plane.GetRefCount() <= 0; },
                      [](ZULMRSBSPPlane* plane) { plane->Release(); });
    ZULKLOOutput::GetOut() << ZULMRSBSPFactoryReport::TassSummary{"ZULMRSBSPPlaneFactoryImpl", "Planes",
                                                                  before, Size()}
                           << "\n";
    return ZULMRSNoError;
}
