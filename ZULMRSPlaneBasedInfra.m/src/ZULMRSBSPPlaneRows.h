#ifndef ZULMRSBSPPlaneRows_h
#define ZULMRSBSPPlaneRows_h

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "ZULMRSBSPDirectReads.h"
#include "ZULMRSBSPFormulas.h"
#include "ZULMRSBSPShortInteger.h"
#include "ZULMRSBSPSign.h"

/// Equations of planes of both kinds, and points given by coordinates, as rows of exact integers for one
/// question: as long as the question needs, 62, 126 or 190 bits. No floating-point instruction is executed,
/// nothing is allocated. Proofs: docs/arithmetic.md.
namespace ZULMRSBSPPlaneRows
{
using ZULMRSBSPShortIntegers::Input;
using ZULMRSBSPShortIntegers::Parts;
using ZULMRSBSPShortIntegers::Range;

template <std::size_t Limbs>
using Row = std::array<ZULMRSBSPShortInteger<Limbs>, 4>;
/// What the numbers of a row of so many limbs stay below, as a power of two.
template <std::size_t Limbs>
constexpr int BitsOf = static_cast<int>(64 * Limbs) - 2;
constexpr std::size_t MostLimbs = 3;

/// Coordinates stay below this power of two, so that their differences are inputs.
constexpr int MostBitsOfCoordinates = 61;
/// The offset of a plane through points whose coordinates have b bits: three products of a normal, below 2^(2
/// b + 3), and a coordinate.
constexpr int BitsOfOffset(int bitsOfCoordinates)
{
    return 3 * bitsOfCoordinates + 5;
}

/// The same number in more limbs, or in fewer that hold it.
template <std::size_t Limbs, std::size_t Given>
ZULMRSBSPShortInteger<Limbs> Resized(const ZULMRSBSPShortInteger<Given>& x)
{
    std::array<std::uint64_t, Limbs> limbs;
    const std::uint64_t sign = 0 - (x.GetLimb(Given - 1) >> 63);
    for (std::size_t i = 0; i < Limbs; ++i) {
        limbs[i] = i < Given ? x.GetLimb(i) : sign;
    }
    return ZULMRSBSPShortInteger<Limbs>(limbs);
}

/// The number divided by 2^scale; it must be an integer that fits.
template <std::size_t Limbs>
ZULMRSBSPShortInteger<Limbs> ToInteger(const Parts& parts, int scale)
{
    std::array<std::uint64_t, Limbs> limbs{};
    if (parts.m_Mantissa == 0) {
        return ZULMRSBSPShortInteger<Limbs>(limbs);
    }
    const int shift = parts.m_Exponent - scale;
    if (shift <= 0) {
        limbs[0] = parts.m_Mantissa >> (-shift);
    } else {
        const auto limb = static_cast<std::size_t>(shift) / 64;
        const auto places = static_cast<unsigned int>(shift) % 64;
        limbs[limb] = parts.m_Mantissa << places;
        if (places > 11 && limb + 1 < Limbs) {
            limbs[limb + 1] = parts.m_Mantissa >> (64 - places);
        }
    }
    const ZULMRSBSPShortInteger<Limbs> magnitude(limbs);
    return parts.m_SignMask != 0 ? -magnitude : magnitude;
}

/// The numbers of one question, before they are integers: planes, and points given by coordinates.
template <std::size_t NbPlanes, std::size_t NbPoints = 0>
class Question
{
public:
    /// False when a plane is missing, or is of another class than the library's, or a number is not finite.
    bool Ask(const std::array<const ZULMRSBSPPlane*, NbPlanes>& planes,
             const std::array<std::array<double, 3>, NbPoints>& points = {})
    {
        for (std::size_t i = 0; i < NbPlanes; ++i) {
            if (planes[i] == nullptr || !Take(*planes[i], i)) {
                return false;
            }
        }
        bool isFinite = true;
        for (std::size_t i = 0; i < NbPoints; ++i) {
            isFinite &= TakeApart(points[i], m_Points[i]);
        }
        return isFinite && ChooseScale();
    }

    /// How many limbs the rows need; 0 when more than there are.
    std::size_t GetNbLimbs() const { return m_NbLimbs; }

    template <std::size_t Limbs>
    Row<Limbs> GetRow(std::size_t index) const
    {
        return m_AreThrough[index] ? RowThroughPoints<Limbs>(m_Planes[index])
                                   : RowOfCoefficients<Limbs>(m_Planes[index]);
    }
    /// The point (x, y, z, 1).
    template <std::size_t Limbs>
    Row<Limbs> GetPoint(std::size_t index) const
    {
        const auto& p = m_Points[index];
        std::array<std::uint64_t, Limbs> one{1};
        return {ToInteger<Limbs>(p[0], m_CoordinateScale), ToInteger<Limbs>(p[1], m_CoordinateScale),
                ToInteger<Limbs>(p[2], m_CoordinateScale), ZULMRSBSPShortInteger<Limbs>(one)};
    }

private:
    /// The coefficients, or the coordinates of the points.
    using Numbers = std::array<Parts, 9>;
    using Coordinates = std::array<Parts, 3>;

    bool Take(const ZULMRSBSPPlane& plane, std::size_t index)
    {
        bool isFinite = true;
        m_AreThrough[index] = ZULMRSBSPDirectReads::Is3PointsPlane(plane);
        if (m_AreThrough[index]) {
            const auto points = static_cast<const ZULMRSBSP3PointsPlane&>(plane).Get3Points();
            for (std::size_t i = 0; i < 9; ++i) {
                isFinite &= ZULMRSBSPShortIntegers::TakeApart(points[i / 3][i % 3], m_Planes[index][i]);
                m_Coordinates.Include(m_Planes[index][i]);
            }
            return isFinite;
        }
        const std::array<double, 4>* coefficients = ZULMRSBSPDirectReads::Coords(plane);
        for (std::size_t i = 0; coefficients != nullptr && i < 4; ++i) {
            isFinite &= ZULMRSBSPShortIntegers::TakeApart((*coefficients)[i], m_Planes[index][i]);
            (i < 3 ? m_Normals : m_Offsets)[index].Include(m_Planes[index][i]);
        }
        return coefficients != nullptr && isFinite;
    }

    bool TakeApart(const std::array<double, 3>& point, Coordinates& parts)
    {
        bool isFinite = true;
        for (std::size_t i = 0; i < 3; ++i) {
            isFinite &= ZULMRSBSPShortIntegers::TakeApart(point[i], parts[i]);
            m_Coordinates.Include(parts[i]);
        }
        return isFinite;
    }

    bool ChooseScale()
    {
        constexpr std::array<int, MostLimbs> budgets = {BitsOf<1>, BitsOf<2>, BitsOf<3>};
        for (std::size_t i = 0; i < MostLimbs; ++i) {
            if (ChooseScaleFor(budgets[i])) {
                m_NbLimbs = i + 1;
                return true;
            }
        }
        return false;
    }
    /// Coordinates in the question give the scale: they are integers times 2^m_Scale, so normals of planes
    /// through them are such times its square, offsets times its cube. In a question without any it is what
    /// the offsets ask for.
    bool ChooseScaleFor(int budget)
    {
        int lowest = -Range::Nowhere;
        int highest = Range::Nowhere;
        for (std::size_t i = 0; i < NbPlanes; ++i) {
            if (m_AreThrough[i]) {
                continue;
            }
            if (m_Normals[i].m_High - m_Normals[i].m_Low > budget ||
                m_Offsets[i].m_High - m_Offsets[i].m_Low > budget) {
                return false;
            }
            lowest = std::max(lowest, m_Offsets[i].m_High - m_Normals[i].m_Low - budget);
            highest = std::min(highest, m_Offsets[i].m_Low - m_Normals[i].m_High + budget);
        }
        if (!HasCoordinates()) {
            m_Scale = std::clamp(0, std::min(lowest, highest), highest);
            return lowest <= highest;
        }
        const int bits = std::max(m_Coordinates.m_High - m_Coordinates.m_Low, 0);
        m_CoordinateScale = bits != 0 ? m_Coordinates.m_Low : Parts::Offset;
        m_Scale = m_CoordinateScale - Parts::Offset;
        const bool fits =
            IsAnyThrough() ? bits <= MostBitsOfCoordinates && BitsOfOffset(bits) <= budget : bits <= budget;
        return fits && lowest <= m_Scale && m_Scale <= highest;
    }
    bool IsAnyThrough() const
    {
        return std::find(m_AreThrough.begin(), m_AreThrough.end(), true) != m_AreThrough.end();
    }
    bool HasCoordinates() const { return NbPoints != 0 || IsAnyThrough(); }

    template <std::size_t Limbs>
    Row<Limbs> RowOfCoefficients(const Numbers& numbers) const
    {
        const auto index = static_cast<std::size_t>(&numbers - m_Planes.data());
        const int scale = std::min(m_Normals[index].m_Low, m_Offsets[index].m_Low - m_Scale);
        return {ToInteger<Limbs>(numbers[0], scale), ToInteger<Limbs>(numbers[1], scale),
                ToInteger<Limbs>(numbers[2], scale), ToInteger<Limbs>(numbers[3], scale + m_Scale)};
    }

    template <std::size_t Limbs>
    Row<Limbs> RowThroughPoints(const Numbers& numbers) const
    {
        std::array<ZULMRSBSPFormulas::Triple<Input>, 3> points;
        for (std::size_t i = 0; i < 9; ++i) {
            points[i / 3][i % 3] = ToInteger<1>(numbers[i], m_CoordinateScale);
        }
        using ZULMRSBSPFormulas::Difference;
        const auto normal = ZULMRSBSPFormulas::CrossProduct(Difference(points[1], points[0]),
                                                            Difference(points[2], points[0]));
        const auto offset = ZULMRSBSPFormulas::OffsetThrough(normal, points[0]);
        return {Resized<Limbs>(normal[0]), Resized<Limbs>(normal[1]), Resized<Limbs>(normal[2]),
                Resized<Limbs>(offset)};
    }

    std::array<Numbers, NbPlanes> m_Planes;
    std::array<bool, NbPlanes> m_AreThrough{};
    std::array<Range, NbPlanes> m_Normals;
    std::array<Range, NbPlanes> m_Offsets;
    std::array<Coordinates, NbPoints> m_Points;
    Range m_Coordinates;
    int m_CoordinateScale = 0;
    /// What the column of the offsets is divided by, as a power of two.
    int m_Scale = 0;
    std::size_t m_NbLimbs = 0;
};

/// A number of limbs as a type.
template <std::size_t Limbs>
struct Length {
    static constexpr std::size_t NbLimbs = Limbs;
};

/// What decide(length) says, called with the number of limbs that the question needs.
template <class AnyQuestion, class Decide>
ZULMRSBSPSign InItsLength(const AnyQuestion& question, const Decide& decide)
{
    switch (question.GetNbLimbs()) {
        case 1:
            return decide(Length<1>());
        case 2:
            return decide(Length<2>());
        default:
            return decide(Length<3>());
    }
}

/// What decide(rows) says of the planes' rows, in the length that they need; undecided where they fit none.
template <std::size_t NbPlanes, class Decide>
ZULMRSBSPSign FromRows(const std::array<const ZULMRSBSPPlane*, NbPlanes>& planes, const Decide& decide)
{
    Question<NbPlanes> question;
    if (!question.Ask(planes)) {
        return ZULMRSBSPSign::Undecided();
    }
    return InItsLength(question, [&](auto length) {
        constexpr std::size_t limbs = decltype(length)::NbLimbs;
        std::array<Row<limbs>, NbPlanes> rows;
        for (std::size_t i = 0; i < NbPlanes; ++i) {
            rows[i] = question.template GetRow<limbs>(i);
        }
        return decide(rows);
    });
}

/// The sign of a plane's equation at the meeting point of three others.
inline ZULMRSBSPSign SideOfMeetingPoint(const ZULMRSBSPPlane& plane,
                                        const std::array<ZULMRSBSPPlane*, 3>& planes)
{
    return FromRows<4>({planes[0], planes[1], planes[2], &plane}, [](const auto& rows) {
        const auto meeting = ZULMRSBSPFormulas::MeetingPoint(rows[0], rows[1], rows[2]);
        return meeting[3].Sign() * ZULMRSBSPFormulas::EquationAtHomogeneous(rows[3], meeting).Sign();
    });
}

/// The sign of a plane's equation at a point given by coordinates.
inline ZULMRSBSPSign SideOfCoordinates(const ZULMRSBSPPlane& plane, const std::array<double, 3>& point)
{
    Question<1, 1> question;
    if (!question.Ask({&plane}, {point})) {
        return ZULMRSBSPSign::Undecided();
    }
    return InItsLength(question, [&question](auto length) {
        constexpr std::size_t limbs = decltype(length)::NbLimbs;
        return ZULMRSBSPFormulas::EquationAtHomogeneous(question.template GetRow<limbs>(0),
                                                        question.template GetPoint<limbs>(0))
            .Sign();
    });
}

/// The sign of the determinant of three normals.
inline ZULMRSBSPSign DeterminantOfNormals(const ZULMRSBSPPlane& p1, const ZULMRSBSPPlane& p2,
                                          const ZULMRSBSPPlane& p3)
{
    return FromRows<3>({&p1, &p2, &p3}, [](const auto& rows) {
        const auto normal = [&rows](std::size_t i) { return std::array{rows[i][0], rows[i][1], rows[i][2]}; };
        return ZULMRSBSPFormulas::Determinant3x3(normal(0), normal(1), normal(2)).Sign();
    });
}

/// The sign of P_i Q_j - P_j Q_i.
inline ZULMRSBSPSign Minor(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q, std::size_t i, std::size_t j)
{
    return FromRows<2>({&p, &q}, [i, j](const auto& rows) {
        return ZULMRSBSPFormulas::Determinant2x2(rows[0][i], rows[0][j], rows[1][i], rows[1][j]).Sign();
    });
}

/// The sign of a coordinate of one meeting point minus that of another.
inline ZULMRSBSPSign Order(const std::array<ZULMRSBSPPlane*, 3>& p, const std::array<ZULMRSBSPPlane*, 3>& q,
                           std::size_t axis)
{
    return FromRows<6>({p[0], p[1], p[2], q[0], q[1], q[2]}, [axis](const auto& rows) {
        const auto a = ZULMRSBSPFormulas::MeetingPoint(rows[0], rows[1], rows[2]);
        const auto b = ZULMRSBSPFormulas::MeetingPoint(rows[3], rows[4], rows[5]);
        return a[3].Sign() * b[3].Sign() * SignOfDifferenceOfProducts(a[axis], b[3], a[3], b[axis]);
    });
}
}  // namespace ZULMRSBSPPlaneRows

#endif
