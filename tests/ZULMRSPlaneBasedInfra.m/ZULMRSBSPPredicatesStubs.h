#ifndef ZULMRSBSPPredicatesStubs_h
#define ZULMRSBSPPredicatesStubs_h

#include <array>
#include <cstddef>
#include <vector>

#include "ZULMRSBSPPredicatesKit.h"
#include "ZULTestPlaneStub.h"

/// Planes and points of a caller's own, which record what the predicates ask of them.
namespace ZULTest
{
using Slots = std::vector<int>;
constexpr int Type = 0;
constexpr int Dynamic = 2;
constexpr int Interval = 3;
constexpr int FloatRing = 4;
constexpr int Coords = 5;
constexpr int Double = 6;

/// The calls without the questions for the kind.
inline Slots WithoutType(const PlaneStub& plane)
{
    Slots calls;
    for (const int call : plane.m_Calls) {
        if (call != Type) {
            calls.push_back(call);
        }
    }
    return calls;
}

inline Owner<PlaneStubWithDoubles> CartesianStub(const Plane4& equation)
{
    auto plane = Own(new PlaneStubWithDoubles(equation));
    plane->m_Type = ZULMRSBSPPlaneType_Cartesian;
    return plane;
}
inline Owner<PlaneStub> ComputedStub(const Plane4& equation)
{
    return Own(new PlaneStub(equation));
}

/// A Cartesian plane that tells which coefficients were read.
class IndexRecorder : public PlaneStubWithDoubles
{
public:
    explicit IndexRecorder(const Plane4& equation) : PlaneStubWithDoubles(equation)
    {
        m_Type = ZULMRSBSPPlaneType_Cartesian;
    }
    double GetDouble(int index) const override
    {
        m_Indices.push_back(index);
        return m_Equation[static_cast<std::size_t>(index)];
    }
    mutable std::vector<int> m_Indices;
};

/// A point of a caller's own: a representation that it is told, and a record of the calls.
class PointStub : public ZULMRSBSPPoint
{
public:
    PointStub(const std::array<ZULMRSBSPPlane*, 3>& planes, const Plane4& representation)
        : ZULMRSBSPPoint(planes), m_Representation(representation)
    {
    }
    ~PointStub() override = default;
    PointStub(const PointStub&) = default;
    PointStub& operator=(const PointStub&) = default;

    ZULMRSBSPPointType GetType() const override
    {
        m_Calls.push_back(0);
        return m_Type;
    }
    ZULMRSBSPQuadruple<ZULExpDynamic> GetCartesianRepresentation_ExpDynamic() const override
    {
        m_Calls.push_back(1);
        return Give<ZULExpDynamic>(m_GivesDynamic);
    }
    ZULMRSBSPQuadruple<ZULExpInterval> GetCartesianRepresentation_ExpInterval() const override
    {
        m_Calls.push_back(2);
        return Give<ZULExpInterval>(m_GivesInterval);
    }
    ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS> GetCartesianRepresentation_FloatRing() const override
    {
        m_Calls.push_back(3);
        return Give<ZULExpFloatRingExtensionTS>(true);
    }
    ZULMRSBSPQuadruple<double> GetApproximatedXYZError() const override
    {
        m_Calls.push_back(4);
        return {nullptr, false};
    }
    ZULMathPoint GetApproximatedPoint() const override
    {
        m_Calls.push_back(5);
        return {m_Representation[0], m_Representation[1], m_Representation[2]};
    }
    std::array<double, 3> GetApproximatedXYZ() const override
    {
        m_Calls.push_back(6);
        return {m_Representation[0], m_Representation[1], m_Representation[2]};
    }
    bool ReplacePlaneByEquivalentPlane(ZULMRSBSPPlane*, ZULMRSBSPPlane*) override { return false; }

    Plane4 m_Representation;
    ZULMRSBSPPointType m_Type = ZULMRSBSPPointType_3Planes;
    bool m_GivesDynamic = true;
    bool m_GivesInterval = true;
    mutable Slots m_Calls;

private:
    template <class Number>
    ZULMRSBSPQuadruple<Number> Give(bool gives) const
    {
        if (!gives) {
            return {nullptr, false};
        }
        return {new std::array<Number, 4>{Number(m_Representation[0]), Number(m_Representation[1]),
                                          Number(m_Representation[2]), Number(m_Representation[3])},
                true};
    }
};

/// Three planes through a point, and the point itself, all of a caller's own.
struct StubScene {
    explicit StubScene(const Point3& p, bool areCartesian = true)
    {
        const std::array<Plane4, 3> equations = {Plane4{1, 0, 0, -p[0]}, Plane4{0, 1, 0, -p[1]},
                                                 Plane4{0, 0, 1, -p[2]}};
        for (std::size_t i = 0; i < 3; ++i) {
            m_Planes[i] = areCartesian ? Owner<PlaneStub>(CartesianStub(equations[i]).release())
                                       : ComputedStub(equations[i]);
        }
        m_Point = Own(new PointStub({m_Planes[0].get(), m_Planes[1].get(), m_Planes[2].get()},
                                    {p[0], p[1], p[2], 1.0}));
    }

    std::array<Owner<PlaneStub>, 3> m_Planes;
    Owner<PointStub> m_Point;
};
}  // namespace ZULTest

#endif
