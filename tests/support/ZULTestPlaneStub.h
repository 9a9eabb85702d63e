#ifndef ZULTestPlaneStub_h
#define ZULTestPlaneStub_h

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <vector>

#include "ZULExpRounding.h"
#include "ZULMRSBSPPlane.h"

namespace ZULTest
{
/// A plane of a caller's own: it delivers what it is told to and records the virtual calls by slot number. It
/// keeps the base class's GetCoords, GetDouble and GetNormalVector.
class PlaneStub : public ZULMRSBSPPlane
{
public:
    explicit PlaneStub(const std::array<double, 4>& equation) : m_Equation(equation) {}
    ~PlaneStub() override
    {
        if (m_Destroyed != nullptr) {
            m_Destroyed->push_back(this);
        }
    }
    PlaneStub(const PlaneStub&) = default;
    PlaneStub& operator=(const PlaneStub&) = default;

    ZULMRSBSPPlaneType GetType() const override
    {
        m_Calls.push_back(0);
        return m_Type;
    }
    bool IsCanonical(int& axis) const override
    {
        m_Calls.push_back(1);
        m_AxisSeen = axis;
        axis = m_Axis;
        return m_Axis >= 0;
    }
    ZULMRSBSPQuadruple<ZULExpDynamic> GetStdEquation_ExpDynamic() const override
    {
        m_Calls.push_back(2);
        return Give<ZULExpDynamic>(m_GivesDynamic);
    }
    ZULMRSBSPQuadruple<ZULExpInterval> GetStdEquation_ExpInterval() const override
    {
        m_Calls.push_back(3);
        return Give<ZULExpInterval>(m_GivesInterval);
    }
    ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS> GetStdEquation_FloatRing() const override
    {
        m_Calls.push_back(4);
        return Give<ZULExpFloatRingExtensionTS>(m_GivesFloatRing);
    }

    std::array<double, 4> m_Equation;
    ZULMRSBSPPlaneType m_Type = ZULMRSBSPPlaneType_3Points;
    int m_Axis = -1;
    bool m_GivesDynamic = true;
    bool m_GivesInterval = true;
    bool m_GivesFloatRing = true;
    std::vector<const PlaneStub*>* m_Destroyed = nullptr;
    mutable int m_AxisSeen = 0;
    mutable std::vector<int> m_Calls;

private:
    template <class Number>
    ZULMRSBSPQuadruple<Number> Give(bool gives) const
    {
        if (!gives) {
            return {nullptr, false};
        }
        return {new std::array<Number, 4>{Number(m_Equation[0]), Number(m_Equation[1]), Number(m_Equation[2]),
                                          Number(m_Equation[3])},
                true};
    }
};

/// The same, with doubles of its own.
class PlaneStubWithDoubles : public PlaneStub
{
public:
    using PlaneStub::PlaneStub;

    std::array<double, 4> GetCoords() const override
    {
        m_Calls.push_back(5);
        return m_Equation;
    }
    double GetDouble(int index) const override
    {
        m_Calls.push_back(6);
        return m_Equation[static_cast<std::size_t>(index)];
    }
    ZULMathVector GetNormalVector() const override
    {
        m_Calls.push_back(7);
        return {m_Equation[0], m_Equation[1], m_Equation[2]};
    }
};

#if defined(__GNUC__) && defined(__x86_64__)
#define ZUL_TEST_HAS_SLOTS 1
/// The slot of a virtual member function: this ABI's member pointers hold its offset in the table, plus one.
template <class MemberPointer>
std::size_t SlotOf(MemberPointer member)
{
    std::size_t offset = 0;
    std::memcpy(&offset, &member, sizeof offset);
    return (offset - 1) / sizeof(void*);
}
#else
#define ZUL_TEST_HAS_SLOTS 0
#endif

/// Part of an object as it lies in memory.
template <class Part, class Object>
Part PeekAt(const Object& object, std::size_t offset)
{
    std::array<unsigned char, sizeof(Part)> bytes{};
    std::memcpy(bytes.data(), reinterpret_cast<const unsigned char*>(&object) + offset, bytes.size());
    return std::bit_cast<Part>(bytes);
}
}  // namespace ZULTest

#endif
