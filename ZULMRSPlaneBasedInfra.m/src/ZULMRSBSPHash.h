#ifndef ZULMRSBSPHash_h
#define ZULMRSBSPHash_h

#include <cstddef>
#include <cstdint>
#include <cstring>

/// Hashing of the keys of the shared tables: 64-bit FNV-1a over the bytes of each member, least significant
/// first, the members combined by exclusive or.
namespace ZULMRSBSPHash
{
constexpr std::uint64_t OffsetBasis = 14695981039346656037ULL;
constexpr std::uint64_t Prime = 1099511628211ULL;

static_assert(sizeof(std::size_t) == 8, "the tables' hashes are 64 bits wide");

/// FNV-1a over the eight bytes of a word, least significant first.
constexpr std::uint64_t OfWord(std::uint64_t word)
{
    std::uint64_t hash = OffsetBasis;
    for (unsigned int shift = 0; shift < 64U; shift += 8U) {
        hash ^= (word >> shift) & 0xFFU;
        hash *= Prime;
    }
    return hash;
}

inline std::uint64_t OfPointer(const void* pointer)
{
    return OfWord(static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(pointer)));
}

/// The bits of a number, alike for equal numbers: -0.0 counts as +0.0.
inline std::uint64_t BitsOf(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits << 1U != 0 ? bits : 0;
}

/// Equal numbers hash alike.
inline std::uint64_t OfDouble(double value)
{
    return OfWord(BitsOf(value));
}

/// The exclusive or of the members' hashes.
template <class... Members>
std::size_t OfPointers(const Members*... members)
{
    return (OfPointer(members) ^ ...);
}
template <class... Members>
std::size_t OfDoubles(Members... members)
{
    return (OfDouble(members) ^ ...);
}
}  // namespace ZULMRSBSPHash

#endif
