#ifndef ZULTestVolume_h
#define ZULTestVolume_h

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <unordered_map>
#include <utility>
#include <vector>

#include <gmpxx.h>

#include "ZULMRSBSPPolyhedron.h"

/// The rational as text, for failed comparisons; needs no other library than GMP's own.
inline void PrintTo(const mpq_class& value, std::ostream* stream)
{
    *stream << value.get_str() << " (about " << value.get_d() << ')';
}

/// Exact volumes in rational arithmetic, computed from nothing but the exact representations of points.
namespace ZULTest
{
using ExactLocation = std::array<mpq_class, 3>;

/// The integer 2^bits.
inline mpz_class PowerOfTwo(std::size_t bits)
{
    mpz_class power;
    mpz_setbit(power.get_mpz_t(), bits);
    return power;
}

/// An exact number as a rational. Takes 53 bits at a time off the top, each of which a double holds exactly.
inline mpq_class ExactRational(const ZULExpFloatRingExtensionTS& number)
{
    const bool isNegative = number.Sign() < 0;
    ZULExpBigIntegerTS left = isNegative ? -number.GetInteger() : number.GetInteger();
    mpz_class magnitude;
    while (!left.IsZero()) {
        const std::size_t bits = left.GetBitLength();
        const std::size_t shift = bits > 53 ? bits - 53 : 0;
        const ZULExpBigIntegerTS top = left.ShiftedRight(shift);
        double mantissa = 0.0;
        std::int64_t exponent = 0;
        top.ConvertToDouble(mantissa, exponent);
        const auto value = static_cast<std::int64_t>(std::ldexp(mantissa, static_cast<int>(exponent)));
        magnitude += mpz_class(static_cast<long>(value)) * PowerOfTwo(shift);
        left = left - top.ShiftedLeft(shift);
    }
    mpq_class rational(isNegative ? mpz_class(-magnitude) : magnitude);
    const std::int64_t exponent = number.GetExponent();
    if (exponent >= 0) {
        rational *= PowerOfTwo(static_cast<std::size_t>(exponent));
    } else {
        rational /= PowerOfTwo(static_cast<std::size_t>(-exponent));
    }
    return rational;
}

/// Where a point lies. The point must be valid.
inline ExactLocation ExactLocate(const ZULMRSBSPPoint& point)
{
    const auto [numbers, isOwned] = point.GetCartesianRepresentation_FloatRing();
    const mpq_class w = ExactRational((*numbers)[3]);
    ExactLocation location{ExactRational((*numbers)[0]) / w, ExactRational((*numbers)[1]) / w,
                           ExactRational((*numbers)[2]) / w};
    if (isOwned) {
        delete numbers;
    }
    return location;
}

/// Adds in pairs, so that long denominators come late.
inline mpq_class Sum(std::vector<mpq_class> terms)
{
    if (terms.empty()) {
        return 0;
    }
    for (std::size_t step = 1; step < terms.size(); step *= 2) {
        for (std::size_t i = 0; i + step < terms.size(); i += 2 * step) {
            terms[i] += terms[i + step];
        }
    }
    return terms[0];
}

/// Six times the signed volume between the origin and a polygon, seen from its plane's front.
inline mpq_class SixfoldCone(const ZULMRSBSPPolygon& polygon,
                             std::unordered_map<const ZULMRSBSPPoint*, ExactLocation>& locations)
{
    std::vector<const ExactLocation*> loop;
    for (const ZULMRSBSPPoint* point : polygon.GetPoints()) {
        auto place = locations.find(point);
        if (place == locations.end()) {
            place = locations.emplace(point, ExactLocate(*point)).first;
        }
        loop.push_back(&place->second);
    }
    std::vector<mpq_class> terms;
    for (std::size_t i = 2; i < loop.size(); ++i) {
        const ExactLocation& a = *loop[0];
        const ExactLocation& b = *loop[i - 1];
        const ExactLocation& c = *loop[i];
        terms.push_back(a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2]) +
                        a[2] * (b[0] * c[1] - b[1] * c[0]));
    }
    return Sum(std::move(terms));
}

/// The exact volume of a set of cells whose polygons have all their vertices. A polygon that two cells hold
/// with opposite orientations cancels and is not computed; polygons are taken in the order in which the cells
/// name them.
inline mpq_class ExactVolume(const std::vector<ZULMRSBSPPolyhedron*>& cells)
{
    std::unordered_map<const ZULMRSBSPPolygon*, std::size_t> numbers;
    std::vector<std::pair<const ZULMRSBSPPolygon*, int>> polygons;
    for (const ZULMRSBSPPolyhedron* cell : cells) {
        for (std::size_t i = 0; i < cell->GetNbPolygons(); ++i) {
            const ZULMRSBSPPolygon* polygon = cell->GetPolygon(i);
            const auto place = numbers.emplace(polygon, polygons.size()).first;
            if (place->second == polygons.size()) {
                polygons.emplace_back(polygon, 0);
            }
            polygons[place->second].second += static_cast<signed char>(cell->GetPolygonOrientation(i));
        }
    }
    std::unordered_map<const ZULMRSBSPPoint*, ExactLocation> locations;
    std::vector<mpq_class> terms;
    for (const auto& [polygon, orientation] : polygons) {
        if (orientation != 0) {
            terms.push_back(orientation * SixfoldCone(*polygon, locations));
        }
    }
    return Sum(std::move(terms)) / 6;
}
}  // namespace ZULTest

#endif
