#include "ZULMRSBSP3PlanesPoint.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <limits>
#include <new>
#include <thread>
#include <utility>

#include "ZULExpFloatStatus.h"
#include "ZULExpRounding.h"
#include "ZULMRSBSPFilter.h"
#include "ZULMRSBSPFormulas.h"
#include "ZULMRSBSPIntegerForms.h"
#include "ZULMRSBSPMeetingIntegers.h"
#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPQuadrupleHolder.h"
#include "ZULMRSBSPReport.h"

namespace
{
constexpr const char* Source = "ZULMRSBSP3PlanesPoint";
constexpr ZULMRSBSPReport::Place NulDeterminantExact = {"ZULMRSBSP3PlanesPoint::Init", Source, 50};
constexpr ZULMRSBSPReport::Place NulDeterminantFiltered = {"ZULMRSBSP3PlanesPoint::Init", Source, 62};
constexpr ZULMRSBSPReport::Place NoInterval = {"ZULMRSBSP3PlanesPoint::GetApproximatedXYZError", Source, 135};
constexpr ZULMRSBSPReport::Place NoApproximation = {"ZULMRSBSP3PlanesPoint::GetApproximatedXYZ", Source, 188};

/// What GetApproximatedPoint gives when memory is exhausted.
constexpr double NoCoordinate = -666.666;

constexpr std::array<ZULExpDynamic, 4> Placeholders = {
    ZULExpDynamic::Placeholder(), ZULExpDynamic::Placeholder(), ZULExpDynamic::Placeholder(),
    ZULExpDynamic::Placeholder()};

using PlaneTriple = std::array<ZULMRSBSPPlane*, 3>;

bool AreAllCartesian(const PlaneTriple& planes)
{
    return planes[0]->GetType() == ZULMRSBSPPlaneType_Cartesian &&
           planes[1]->GetType() == ZULMRSBSPPlaneType_Cartesian &&
           planes[2]->GetType() == ZULMRSBSPPlaneType_Cartesian;
}

/// The representation of the planes' meeting point. False, and nothing written, when a plane has no equation
/// in this arithmetic.
template <class Number>
bool ComputeMeetingPoint(const PlaneTriple& planes, std::array<Number, 4>& representation)
{
    using ZULMRSBSPFormulas::Convert;
    using ZULMRSBSPFormulas::MeetingPoint;
    if (AreAllCartesian(planes)) {
        representation =
            MeetingPoint(Convert<Number>(planes[0]->GetCoords()), Convert<Number>(planes[1]->GetCoords()),
                         Convert<Number>(planes[2]->GetCoords()));
        return true;
    }
    const ZULMRSBSPQuadrupleHolder<Number> p(planes[0]->GetStdEquationTpl<Number>());
    const ZULMRSBSPQuadrupleHolder<Number> q(planes[1]->GetStdEquationTpl<Number>());
    const ZULMRSBSPQuadrupleHolder<Number> r(planes[2]->GetStdEquationTpl<Number>());
    if (!p || !q || !r) {
        return false;
    }
    representation = MeetingPoint(*p, *q, *r);
    return true;
}

/// Minus the number, its error bound unchanged.
void NegateValues(std::array<ZULExpDynamic, 4>& representation)
{
    for (ZULExpDynamic& number : representation) {
        number = -number;
    }
}

std::array<double, 3> Quotients(const std::array<ZULExpDynamic, 4>& representation)
{
    const ZULExpFloatScope scope;
    const double w = representation[3].GetValue();
    std::array<double, 3> quotients{};
    for (std::size_t i = 0; i < quotients.size(); ++i) {
        double numerator = representation[i].GetValue();
        ZULExpProcessor::Pin(numerator);
        quotients[i] = numerator / w;
        ZULExpProcessor::Pin(quotients[i]);
    }
    return quotients;
}

/// Coordinates and the widest of the three quotient intervals.
std::array<double, 4> QuotientsAndError(const ZULMRSBSPQuadrupleHolder<ZULExpInterval>& representation)
{
    const ZULExpRounding rounding;
    std::array<double, 4> result{};
    double error = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        const ZULExpInterval quotient = representation[i] / representation[3];
        result[i] = quotient.Estimate();
        double upper = quotient.UpperBound();
        ZULExpProcessor::Pin(upper);
        double width = upper - quotient.LowerBound();
        ZULExpProcessor::Pin(width);
        error = width > error ? width : error;
    }
    result[3] = error;
    return result;
}
}  // namespace

ZULMRSBSP3PlanesPoint::ZULMRSBSP3PlanesPoint(const std::array<ZULMRSBSPPlane*, 3>& planes, bool& isValid)
    : ZULMRSBSPPoint(planes)
{
    isValid = InitByIntegers();
    if (!isValid) {
        new (&m_Representation) auto(Placeholders);
        m_RepresentationState = RepresentationState::Invalid;
        isValid = InitByNumbers();
    }
}

ZULMRSBSP3PlanesPoint::ZULMRSBSP3PlanesPoint(std::array<ZULMRSBSPPlane*, 3>&& planes, bool& isValid)
    : ZULMRSBSP3PlanesPoint(static_cast<const PlaneTriple&>(planes), isValid)
{
}

ZULMRSBSP3PlanesPoint::ZULMRSBSP3PlanesPoint(const ZULMRSBSP3PlanesPoint& other)
    : ZULMRSBSPPoint(other.WithRepresentation()),
      m_IntegerForm(other.m_IntegerForm),
      m_Representation(other.m_Representation),
      m_RepresentationState(other.m_RepresentationState),
      m_IsExchanged(other.m_IsExchanged)
{
}

ZULMRSBSP3PlanesPoint& ZULMRSBSP3PlanesPoint::operator=(const ZULMRSBSP3PlanesPoint& other)
{
    ZULMRSBSPPoint::operator=(other.WithRepresentation());
    m_IntegerForm = other.m_IntegerForm;
    m_Representation = other.m_Representation;
    m_RepresentationState = other.m_RepresentationState;
    m_IsExchanged = other.m_IsExchanged;
    return *this;
}

ZULMRSBSP3PlanesPoint::~ZULMRSBSP3PlanesPoint() = default;

/// Orients the triple, where all planes keep exact integers and meet in one point.
bool ZULMRSBSP3PlanesPoint::InitByIntegers()
{
    const ZULMRSBSPMeetingIntegers::Planes planes(*this);
    if (!planes) {
        return false;
    }
    const ZULMRSBSPMeetingIntegers::Meeting meeting = planes.Meet();
    if (meeting.m_W.IsZero()) {
        return false;
    }
    m_IsExchanged = meeting.m_W.IsNegative();
    if (m_IsExchanged) {
        std::swap(m_Planes[1], m_Planes[2]);
    }
    m_IntegerForm = meeting.m_Form;
    m_RepresentationState = RepresentationState::Pending;
    return true;
}

bool ZULMRSBSP3PlanesPoint::InitByNumbers()
{
    m_IntegerForm = ZULMRSBSPIntegerForm();
    m_IsExchanged = false;
    if (std::find(m_Planes.begin(), m_Planes.end(), nullptr) != m_Planes.end()) {
        return false;
    }
    const ZULExpSign_t sign = ComputeFiltered();
    if (sign == ZULExpSignUncertain) {
        return OrientExactly();
    }
    if (sign == ZULExpSignZero) {
        ZULMRSBSPReport::Error(NulDeterminantFiltered, "ERROR INVALID POINT (nul determinant)");
        return false;
    }
    if (sign == ZULExpSignNegative) {
        std::swap(m_Planes[1], m_Planes[2]);
        NegateValues(m_Representation);
    }
    // The sign of W is certain, unless the numbers were never computed.
    if (!m_Representation[3].IsPlaceholder()) {
        m_IntegerForm = ZULMRSBSPIntegerForms::OfPoint(m_Representation);
    }
    return true;
}

ZULExpSign_t ZULMRSBSP3PlanesPoint::ComputeFiltered()
{
    const ZULExpFloatScope scope;
    // The numbers go straight to memory that outlives the scope: they are complete when the status is read.
    // Where a plane has no filtered equation the earlier ones stay, and the status alone makes them valid.
    ComputeMeetingPoint(m_Planes, m_Representation);
    const bool isValid = !scope.IsFaulted();
    m_RepresentationState = isValid ? RepresentationState::Valid : RepresentationState::Invalid;
    return isValid ? m_Representation[3].Sign() : ZULExpSignUncertain;
}

bool ZULMRSBSP3PlanesPoint::OrientExactly()
{
    const int sign = ZULMRSBSPPredicates::SignOf3PlanesDeterminant(*m_Planes[0], *m_Planes[1], *m_Planes[2]);
    if (sign == 0) {
        ZULMRSBSPReport::Error(NulDeterminantExact, "ERROR INVALID POINT (nul determinant)");
        return false;
    }
    if (sign < 0) {
        // The cached numbers keep their sign: a filter may decide only where W is certainly positive.
        std::swap(m_Planes[1], m_Planes[2]);
    }
    return true;
}

bool ZULMRSBSP3PlanesPoint::HasRepresentation() const
{
    const std::atomic_ref state(m_RepresentationState);
    RepresentationState seen = state.load(std::memory_order_acquire);
    if (seen == RepresentationState::Pending &&
        state.compare_exchange_strong(seen, RepresentationState::BeingMade)) {
        MakeRepresentation();
    }
    // Making it is short work; only a thread that lost its time slice there keeps others waiting.
    while ((seen = state.load(std::memory_order_acquire)) == RepresentationState::BeingMade) {
        std::this_thread::yield();
    }
    return seen == RepresentationState::Valid;
}

/// As for a triple that the numbers themselves have oriented: from the planes in the order given, negated
/// where W is certainly negative.
void ZULMRSBSP3PlanesPoint::MakeRepresentation() const
{
    PlaneTriple planes = m_Planes;
    if (m_IsExchanged) {
        std::swap(planes[1], planes[2]);
    }
    new (&m_Representation) auto(Placeholders);
    const ZULExpFloatScope scope;
    ComputeMeetingPoint(planes, m_Representation);
    const bool isValid = !scope.IsFaulted();
    if (isValid && m_Representation[3].Sign() == ZULExpSignNegative) {
        NegateValues(m_Representation);
    }
    std::atomic_ref(m_RepresentationState)
        .store(isValid ? RepresentationState::Valid : RepresentationState::Invalid,
               std::memory_order_release);
}

/// For whoever copies the numbers, or exchanges a plane: what is not computed anew stays.
const ZULMRSBSP3PlanesPoint& ZULMRSBSP3PlanesPoint::WithRepresentation() const
{
    HasRepresentation();
    return *this;
}

ZULMRSBSPPointType ZULMRSBSP3PlanesPoint::GetType() const
{
    return ZULMRSBSPPointType_3Planes;
}

ZULMRSBSPQuadruple<ZULExpDynamic> ZULMRSBSP3PlanesPoint::GetCartesianRepresentation_ExpDynamic() const
{
    return {HasRepresentation() ? &m_Representation : nullptr, false};
}

ZULMRSBSPQuadruple<ZULExpInterval> ZULMRSBSP3PlanesPoint::GetCartesianRepresentation_ExpInterval() const
{
    const ZULExpRounding rounding;
    ZULMRSBSPQuadrupleMaker::Owner<ZULExpInterval> representation =
        ZULMRSBSPQuadrupleMaker::Allocate<ZULExpInterval>();
    if (representation == nullptr) {
        return {nullptr, true};
    }
    // The guard has cleared the status.
    const bool isComputed = ComputeMeetingPoint(m_Planes, *representation);
    if (!isComputed || (_statusfp() & ZULExpFloatFault) != 0) {
        return {nullptr, false};
    }
    return ZULMRSBSPQuadrupleMaker::HandOver(std::move(representation));
}

ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS> ZULMRSBSP3PlanesPoint::GetCartesianRepresentation_FloatRing()
    const
{
    ZULMRSBSPQuadrupleMaker::Owner<ZULExpFloatRingExtensionTS> representation =
        ZULMRSBSPQuadrupleMaker::Allocate<ZULExpFloatRingExtensionTS>();
    if (representation == nullptr || !ComputeMeetingPoint(m_Planes, *representation)) {
        return {nullptr, false};
    }
    return ZULMRSBSPQuadrupleMaker::HandOver(std::move(representation));
}

ZULMRSBSPQuadruple<double> ZULMRSBSP3PlanesPoint::GetApproximatedXYZError() const
{
    ZULMRSBSPQuadrupleMaker::Owner<double> result = ZULMRSBSPQuadrupleMaker::Allocate<double>();
    if (result == nullptr) {
        return {nullptr, false};
    }
    const ZULMRSBSPQuadrupleHolder representation(GetCartesianRepresentation_ExpInterval());
    if (representation) {
        *result = QuotientsAndError(representation);
    } else {
        ZULMRSBSPReport::Error(
            NoInterval,
            "GetCartesianRepresentation_ExpInterval Invalid Equation Error in Point Evaluation !!");
        (*result)[3] = std::numeric_limits<double>::infinity();
    }
    return ZULMRSBSPQuadrupleMaker::HandOver(std::move(result));
}

ZULMathPoint ZULMRSBSP3PlanesPoint::GetApproximatedPoint() const
{
    if (HasRepresentation()) {
        const auto [x, y, z] = Quotients(m_Representation);
        return {x, y, z};
    }
    const ZULMRSBSPQuadrupleHolder approximation(GetApproximatedXYZError());
    if (!approximation) {
        return {NoCoordinate, NoCoordinate, NoCoordinate};
    }
    return {approximation[0], approximation[1], approximation[2]};
}

std::array<double, 3> ZULMRSBSP3PlanesPoint::GetApproximatedXYZ() const
{
    if (HasRepresentation()) {
        return Quotients(m_Representation);
    }
    const ZULMRSBSPQuadrupleHolder approximation(GetApproximatedXYZError());
    if (!approximation) {
        ZULMRSBSPReport::Error(
            NoApproximation,
            "ZULMRSBSP3PlanesPoint::GetApproximatedXYZ() INVALID EQUATION !! -> Return (0.,0.,0.)");
        return {0.0, 0.0, 0.0};
    }
    return {approximation[0], approximation[1], approximation[2]};
}

bool ZULMRSBSP3PlanesPoint::ReplacePlaneByEquivalentPlane(ZULMRSBSPPlane* newPlane, ZULMRSBSPPlane* oldPlane)
{
    HasRepresentation();
    if (!ReplaceInTriple(newPlane, oldPlane)) {
        return false;
    }
    if (!InitByIntegers()) {
        InitByNumbers();
    }
    return true;
}
