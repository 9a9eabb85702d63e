#ifndef ZULMRSBSPQuadrupleHolder_h
#define ZULMRSBSPQuadrupleHolder_h

#include <array>
#include <cstddef>
#include <memory>
#include <new>
#include <tuple>
#include <utility>

#include "ZULMRSBSPPlane.h"

/// Holds what an equation or representation accessor returned and frees it when it is owned.
template <class Number>
class ZULMRSBSPQuadrupleHolder
{
public:
    explicit ZULMRSBSPQuadrupleHolder(const ZULMRSBSPQuadruple<Number>& quadruple)
        : m_Numbers(std::get<0>(quadruple)), m_Owned(std::get<1>(quadruple))
    {
    }
    ~ZULMRSBSPQuadrupleHolder()
    {
        if (m_Owned) {
            delete m_Numbers;
        }
    }
    ZULMRSBSPQuadrupleHolder(const ZULMRSBSPQuadrupleHolder&) = delete;
    ZULMRSBSPQuadrupleHolder& operator=(const ZULMRSBSPQuadrupleHolder&) = delete;

    /// False when the object could not deliver; nothing may then be read.
    explicit operator bool() const { return m_Numbers != nullptr; }
    const std::array<Number, 4>& operator*() const { return *m_Numbers; }
    const Number& operator[](std::size_t index) const { return (*m_Numbers)[index]; }

private:
    const std::array<Number, 4>* m_Numbers;
    bool m_Owned;
};

namespace ZULMRSBSPQuadrupleMaker
{
/// An array made for the caller of an accessor; null when memory is exhausted.
template <class Number>
using Owner = std::unique_ptr<std::array<Number, 4>>;

template <class Number>
Owner<Number> Allocate()
{
    return Owner<Number>(new (std::nothrow) std::array<Number, 4>{});
}

/// Hands the array over: (array, true), or (null, false) when there is none.
template <class Number>
ZULMRSBSPQuadruple<Number> HandOver(Owner<Number> array)
{
    const bool owned = array != nullptr;
    return {array.release(), owned};
}

/// The doubles as an array of the caller's.
template <class Number>
ZULMRSBSPQuadruple<Number> FromDoubles(const std::array<double, 4>& values)
{
    Owner<Number> array = Allocate<Number>();
    if (array != nullptr) {
        *array = {Number(values[0]), Number(values[1]), Number(values[2]), Number(values[3])};
    }
    return HandOver(std::move(array));
}
}  // namespace ZULMRSBSPQuadrupleMaker

#endif
