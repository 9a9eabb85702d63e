#ifndef ZULMRSBSPIntegerForms_h
#define ZULMRSBSPIntegerForms_h

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "ZULExpDynamic.h"
#include "ZULMRSBSPFormulas.h"
#include "ZULMRSBSPIntegerForm.h"
#include "ZULMRSBSPShortInteger.h"
#include "ZULMRSBSPSign.h"

/// Making and using the integers that planes and points keep. No floating-point instruction is executed, so
/// the caller's control word and status have no part in it, and no size of input is out of range. Proofs:
/// docs/arithmetic.md.
namespace ZULMRSBSPIntegerForms
{
using ZULMRSBSPShortIntegers::InputBits;
using ZULMRSBSPShortIntegers::Parts;

using ZULMRSBSPShortIntegers::Wide;

/// The offset of a plane is divided by 2^OffsetShift and the W of a point multiplied by it: lengths from 0.03
/// to 8000 units then leave unit normals and offsets of full mantissas exact.
constexpr int OffsetShift = 4;

/// Of integers cut off after their last place.
constexpr std::int64_t ErrorOfCutting = 2;

//---------------------------------------------------------------- making

/// Of four doubles, the last one to be multiplied by 2^shift. Unknown when one is not finite.
inline ZULMRSBSPIntegerForm FromDoubles(const std::array<double, 4>& values, int shift)
{
    ZULMRSBSPIntegerForm form;
    const ZULMRSBSPShortIntegers::Row<4> row = ZULMRSBSPShortIntegers::Cut(values, shift);
    if (row.m_IsFinite) {
        form.m_Values = row.m_Values;
        form.m_Error = row.m_IsExact ? 0 : ErrorOfCutting;
    }
    return form;
}
inline ZULMRSBSPIntegerForm OfPlane(const std::array<double, 4>& equation)
{
    return FromDoubles(equation, -OffsetShift);
}
inline ZULMRSBSPIntegerForm OfCoordinates(const std::array<double, 3>& point)
{
    return FromDoubles({point[0], point[1], point[2], 1.0}, OffsetShift);
}

/// Of filtered numbers: their values, off by as many rounding units of their magnitudes as they count.
inline ZULMRSBSPIntegerForm FromFiltered(const std::array<ZULExpDynamic, 4>& numbers, int shift)
{
    // A number below 2^53 of its exponent's unit, times 2^-53, times a count below 2^countBits; one bit more
    // covers the rounding of the magnitude.
    constexpr int slackBits = 1;
    constexpr int mostErrorBits = 30;
    int top = 0;
    int errorExponent = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        Parts value;
        Parts magnitude;
        if (!ZULMRSBSPShortIntegers::TakeApart(numbers[i].GetValue(), value) ||
            !ZULMRSBSPShortIntegers::TakeApart(numbers[i].GetMagnitude(), magnitude)) {
            return {};
        }
        const int countBits = 32 - std::countl_zero(numbers[i].GetCount());
        const int shiftHere = i == 3 ? shift : 0;
        top = std::max(top, value.m_Exponent + shiftHere);
        errorExponent = std::max(errorExponent, magnitude.m_Exponent + shiftHere + countBits + slackBits);
    }
    // In units of the integers, whose scale is that of the top exponent less what an input has room for.
    const int errorBits = errorExponent - (top - (InputBits - 53));
    if (errorBits > mostErrorBits) {
        return {};
    }
    ZULMRSBSPIntegerForm form = FromDoubles(
        {numbers[0].GetValue(), numbers[1].GetValue(), numbers[2].GetValue(), numbers[3].GetValue()}, shift);
    form.m_Error = (std::int64_t{1} << std::max(errorBits, 0)) + ErrorOfCutting;
    return form;
}
inline ZULMRSBSPIntegerForm OfPlane(const std::array<ZULExpDynamic, 4>& equation)
{
    return FromFiltered(equation, -OffsetShift);
}
inline ZULMRSBSPIntegerForm OfPoint(const std::array<ZULExpDynamic, 4>& representation)
{
    return FromFiltered(representation, OffsetShift);
}

/// Of exact numbers of three limbs.
inline ZULMRSBSPIntegerForm FromExact(const std::array<ZULMRSBSPShortInteger<3>, 4>& numbers)
{
    // The bits in use, a negative number counted by its complement, and the bits that are set at all.
    std::array<std::uint64_t, 3> used{};
    std::array<std::uint64_t, 3> set{};
    for (const ZULMRSBSPShortInteger<3>& number : numbers) {
        const auto sign = static_cast<std::uint64_t>(static_cast<std::int64_t>(number.GetLimb(2)) >> 63);
        for (std::size_t i = 0; i < 3; ++i) {
            used[i] |= number.GetLimb(i) ^ sign;
            set[i] |= number.GetLimb(i);
        }
    }
    const std::size_t top = used[2] != 0 ? 2 : (used[1] != 0 ? 1 : 0);
    const int length = static_cast<int>(64 * top) + 64 - std::countl_zero(used[top]);
    ZULMRSBSPIntegerForm form;
    if (length <= InputBits) {
        for (std::size_t i = 0; i < 4; ++i) {
            form.m_Values[i] = static_cast<std::int64_t>(numbers[i].GetLimb(0) << (InputBits - length));
        }
        form.m_Error = 0;
        return form;
    }
    const auto limb = static_cast<std::size_t>(length - InputBits) / 64;
    const auto bits = static_cast<unsigned int>(length - InputBits) % 64;
    for (std::size_t i = 0; i < 4; ++i) {
        // The limb above may be that of the sign; its place above the highest one is not needed.
        const std::uint64_t high =
            limb < 2 ? numbers[i].GetLimb(limb + 1) : 0 - (numbers[i].GetLimb(2) >> 63);
        const std::uint64_t low = numbers[i].GetLimb(limb);
        form.m_Values[i] = static_cast<std::int64_t>(bits == 0 ? low : (low >> bits) | (high << (64 - bits)));
    }
    const std::uint64_t lost =
        (limb > 0 ? set[0] : 0) | (limb > 1 ? set[1] : 0) | (set[limb] & ((std::uint64_t{1} << bits) - 1));
    form.m_Error = lost == 0 ? 0 : ErrorOfCutting;
    return form;
}

/// The integers of a plane as they enter a determinant; they must be exact.
inline std::array<ZULMRSBSPShortIntegers::Input, 4> ToInputs(const ZULMRSBSPIntegerForm& form)
{
    return ZULMRSBSPShortIntegers::ToInputs(form.m_Values);
}

//---------------------------------------------------------------- using

/// The sign of an integer that differs from the true value by less than 2^64 times the error, where that
/// decides; with error 0 it is the true value.
inline ZULMRSBSPSign Decide(Wide value, std::int64_t error)
{
    if (error == 0) {
        return ZULMRSBSPShortIntegers::SignOf(value);
    }
    // The sign cannot be foreseen, that it is decided can: no branch on the former.
    const auto high = static_cast<std::int64_t>(value >> 64);
    const int sign = static_cast<int>(high >= error) - static_cast<int>(high < -error);
    return sign != 0 ? ZULMRSBSPSign::FromNumber(sign) : ZULMRSBSPSign::Undecided();
}

/// The side of a plane on which a point lies.
inline ZULMRSBSPSign SideOf(const ZULMRSBSPIntegerForm& plane, const ZULMRSBSPIntegerForm& point)
{
    const auto& p = plane.m_Values;
    const auto& q = point.m_Values;
    return Decide(Wide{p[0]} * q[0] + Wide{p[1]} * q[1] + Wide{p[2]} * q[2] + Wide{p[3]} * q[3],
                  plane.m_Error + point.m_Error);
}

/// The determinant of three planes' normals; their integers must be exact.
inline ZULMRSBSPSign DeterminantOfNormals(const ZULMRSBSPIntegerForm& p, const ZULMRSBSPIntegerForm& q,
                                          const ZULMRSBSPIntegerForm& r)
{
    const auto a = ToInputs(p);
    const auto b = ToInputs(q);
    const auto c = ToInputs(r);
    return ZULMRSBSPFormulas::Determinant3x3<ZULMRSBSPShortIntegers::Input>(
               {a[0], a[1], a[2]}, {b[0], b[1], b[2]}, {c[0], c[1], c[2]})
        .Sign();
}

/// P_i Q_j - P_j Q_i of two planes, or of two points.
inline ZULMRSBSPSign Minor(const ZULMRSBSPIntegerForm& p, const ZULMRSBSPIntegerForm& q, std::size_t i,
                           std::size_t j)
{
    return Decide(Wide{p.m_Values[i]} * q.m_Values[j] - Wide{p.m_Values[j]} * q.m_Values[i],
                  p.m_Error + q.m_Error);
}
}  // namespace ZULMRSBSPIntegerForms

#endif
