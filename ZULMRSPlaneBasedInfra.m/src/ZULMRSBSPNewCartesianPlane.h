#ifndef ZULMRSBSPNewCartesianPlane_h
#define ZULMRSBSPNewCartesianPlane_h

#include <array>
#include <new>

#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSBSPIntegerForms.h"

/// A Cartesian plane in the making: what takes time is prepared at leisure, the plane itself made, and
/// counted, only once it is certain that there shall be one.
class ZULMRSBSPNewCartesianPlane
{
public:
    ZULMRSBSPNewCartesianPlane() = default;
    ~ZULMRSBSPNewCartesianPlane()
    {
        ZULMRSBSPCartesianPlane::operator delete(m_Memory, sizeof(ZULMRSBSPCartesianPlane));
    }
    ZULMRSBSPNewCartesianPlane(const ZULMRSBSPNewCartesianPlane&) = delete;
    ZULMRSBSPNewCartesianPlane& operator=(const ZULMRSBSPNewCartesianPlane&) = delete;

    void Prepare(const std::array<double, 4>& equation)
    {
        m_Memory = ZULMRSBSPCartesianPlane::operator new(sizeof(ZULMRSBSPCartesianPlane), std::nothrow);
        m_IntegerForm = ZULMRSBSPIntegerForms::OfPlane(equation);
    }
    /// False when it has not been prepared, or memory was exhausted.
    bool IsReady() const { return m_Memory != nullptr; }
    /// The plane of the equation prepared, with one owner. Once.
    ZULMRSBSPCartesianPlane* Make(const std::array<double, 4>& equation)
    {
        void* const memory = m_Memory;
        m_Memory = nullptr;
        return new (memory) ZULMRSBSPCartesianPlane(equation, m_IntegerForm);
    }

private:
    void* m_Memory = nullptr;
    ZULMRSBSPIntegerForm m_IntegerForm;
};

#endif
