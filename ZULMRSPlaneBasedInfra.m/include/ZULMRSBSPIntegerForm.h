#ifndef ZULMRSBSPIntegerForm_h
#define ZULMRSBSPIntegerForm_h

#include <array>
#include <cstdint>

/// What planes and points keep for the first look at a question: four integers of at most 62 bits and how far
/// they may be off. Up to one positive factor they are (a, b, c, d / 16) of a plane and (X, Y, Z, 16 W) of a
/// point, so that their scalar product has the sign of the plane's equation at the point. A plain value.
struct ZULMRSBSPIntegerForm {
    /// The error of a form that says nothing; its integers are zeros.
    static constexpr std::int64_t Unknown = std::int64_t{1} << 61;

    std::array<std::int64_t, 4> m_Values{{0, 0, 0, 0}};
    /// 0: the integers are exact. Otherwise each is off by less than this number less one.
    std::int64_t m_Error = Unknown;

    bool IsExact() const { return m_Error == 0; }
};

#endif
