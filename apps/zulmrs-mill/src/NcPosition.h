#ifndef NcPosition_h
#define NcPosition_h

#include <array>

#include "ZULMathPoint.h"

/// What is known of the place of the tool along one axis.
enum class NcAxisState {
    /// The program gave it.
    Known,
    /// Nothing has been said yet; zero of the program is assumed.
    Assumed,
    /// Moved in machine coordinates since the program last gave it.
    Unknown
};

/// The place of the tool tip in stock coordinates (millimetres), axis by axis.
struct NcPosition {
    std::array<double, 3> m_value{};
    std::array<NcAxisState, 3> m_state{NcAxisState::Assumed, NcAxisState::Assumed, NcAxisState::Assumed};
    /// For unknown axes: the line of the move in machine coordinates.
    std::array<int, 3> m_lostOnLine{};

    ZULMathPoint Point() const { return {m_value[0], m_value[1], m_value[2]}; }
    bool IsKnown(int iAxis) const { return State(iAxis) == NcAxisState::Known; }
    NcAxisState State(int iAxis) const { return m_state[static_cast<std::size_t>(iAxis)]; }
    double Value(int iAxis) const { return m_value[static_cast<std::size_t>(iAxis)]; }
    void Set(int iAxis, double iValue, NcAxisState iState = NcAxisState::Known)
    {
        m_value[static_cast<std::size_t>(iAxis)] = iValue;
        m_state[static_cast<std::size_t>(iAxis)] = iState;
    }
    void Lose(int iAxis, int iLine)
    {
        m_state[static_cast<std::size_t>(iAxis)] = NcAxisState::Unknown;
        m_lostOnLine[static_cast<std::size_t>(iAxis)] = iLine;
    }
    /// Bit 0 for X, 1 for Y, 2 for Z.
    unsigned KnownAxes() const
    {
        return (IsKnown(0) ? 1U : 0U) | (IsKnown(1) ? 2U : 0U) | (IsKnown(2) ? 4U : 0U);
    }
};

#endif
