#ifndef ZULBenchKinds_h
#define ZULBenchKinds_h

#include <array>

namespace ZULBench
{
/// How the numbers of a case relate.
enum class Shape {
    Random,           ///< 53 random bits each; nothing is near zero
    DegenerateShort,  ///< integers up to about a thousand, the answer is exactly zero
    DegenerateLong,   ///< 50-bit mantissas, the answer is exactly zero
    Near              ///< DegenerateLong with one number moved by one unit in its last place
};

/// A kind of data: a shape, and whether it is scaled out of the range in which products of doubles work (-1:
/// they underflow, 1: they overflow). The doubles themselves stay normal and finite.
struct Kind {
    const char* m_Name;
    Shape m_Shape;
    int m_Scale;
};

inline constexpr std::array<Kind, 8> Kinds = {{{"easy", Shape::Random, 0},
                                               {"deg_int", Shape::DegenerateShort, 0},
                                               {"deg_50bit", Shape::DegenerateLong, 0},
                                               {"near", Shape::Near, 0},
                                               {"tiny", Shape::Random, -1},
                                               {"huge", Shape::Random, 1},
                                               {"tiny_deg", Shape::DegenerateLong, -1},
                                               {"huge_deg", Shape::DegenerateLong, 1}}};
}  // namespace ZULBench

#endif
