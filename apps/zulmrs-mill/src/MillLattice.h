#ifndef MillLattice_h
#define MillLattice_h

#include <array>
#include <cstdint>
#include <string>

#include "ZULMathPoint.h"

/// All cutting is done on whole nanometres. Programs are written in decimals, which doubles in millimetres
/// only approximate: what is collinear or coplanar in the program would not be so for an exact cutter. In
/// nanometres the places, the tools and the directions between them are whole numbers, and so are the planes
/// of the swept solids.
constexpr double kMillNanometresPerMm = 1e6;
/// Places farther out than this on any axis are refused: 16 m, well below what the arithmetic of planes
/// holds.
constexpr std::int64_t kMillFarthestPlace = 16'000'000'000;

/// Whole numbers of twice the usual width: products of places and normals.
__extension__ typedef __int128 MillWide;

/// A place or vector in nanometres.
struct MillVector {
    std::int64_t m_X = 0;
    std::int64_t m_Y = 0;
    std::int64_t m_Z = 0;

    friend constexpr MillVector operator+(const MillVector& u, const MillVector& v)
    {
        return {u.m_X + v.m_X, u.m_Y + v.m_Y, u.m_Z + v.m_Z};
    }
    friend constexpr MillVector operator-(const MillVector& u, const MillVector& v)
    {
        return {u.m_X - v.m_X, u.m_Y - v.m_Y, u.m_Z - v.m_Z};
    }
    friend constexpr bool operator==(const MillVector&, const MillVector&) = default;
};

/// A direction, most often without common factor, so that parallel directions of one sense are equal.
struct MillNormal {
    MillWide m_X = 0;
    MillWide m_Y = 0;
    MillWide m_Z = 0;

    friend constexpr bool operator==(const MillNormal&, const MillNormal&) = default;
};

/// An axis-parallel box in nanometres.
struct MillBox {
    MillVector m_Min;
    MillVector m_Max;

    double GetVolumeMm3() const;
};

MillWide MillDot(const MillNormal& n, const MillVector& v);
MillNormal MillCross(const MillVector& u, const MillVector& v);
/// Divided by the greatest common factor of its components; (0, 0, 0) stays.
MillNormal MillPrimitive(const MillNormal& n);
MillVector MillPrimitive(const MillVector& v);

/// Nearest whole number of nanometres. False for a place beyond kMillFarthestPlace or not a number.
bool MillSnap(double mm, std::int64_t& nanometres);
bool MillSnap(const ZULMathPoint& mm, MillVector& place);

constexpr double MillToMm(std::int64_t nanometres)
{
    return static_cast<double>(nanometres) / kMillNanometresPerMm;
}

#endif
