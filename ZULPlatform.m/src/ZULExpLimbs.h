#ifndef ZULExpLimbs_h
#define ZULExpLimbs_h

#include <gmp.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

// Natural numbers as arrays of 64-bit limbs, least significant first. Short ones are computed in place, where
// a call would cost more than the work; long ones by GMP.
namespace ZULExpLimbs
{
static_assert(GMP_NUMB_BITS == 64, "limbs of 64 bits without nails");
static_assert(std::is_same_v<mp_limb_t, std::uint64_t>, "limbs are passed to GMP as they are");

using Limb = std::uint64_t;
__extension__ using DoubleLimb = unsigned __int128;

constexpr std::size_t LimbBits = 64;
constexpr std::size_t ShortLimbs = 8;

/// out = in << bits, returns what was shifted out. bits < 64; out may be in.
inline Limb ShiftLeft(Limb* out, const Limb* in, std::size_t size, unsigned int bits)
{
    if (bits == 0) {
        std::copy_backward(in, in + size, out + size);
        return 0;
    }
    if (size > ShortLimbs) {
        return mpn_lshift(out, in, static_cast<mp_size_t>(size), bits);
    }
    const unsigned int rest = LimbBits - bits;
    const Limb shiftedOut = in[size - 1] >> rest;
    for (std::size_t i = size - 1; i > 0; --i) {
        out[i] = (in[i] << bits) | (in[i - 1] >> rest);
    }
    out[0] = in[0] << bits;
    return shiftedOut;
}

/// out = x + y + carry, returns the carry. out may be x or y.
inline Limb Add(Limb* out, const Limb* x, const Limb* y, std::size_t size)
{
    if (size > ShortLimbs) {
        return mpn_add_n(out, x, y, static_cast<mp_size_t>(size));
    }
    Limb carry = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const DoubleLimb sum = DoubleLimb{x[i]} + y[i] + carry;
        out[i] = static_cast<Limb>(sum);
        carry = static_cast<Limb>(sum >> LimbBits);
    }
    return carry;
}

/// out = x + carry, returns the carry. out may be x.
inline Limb AddCarry(Limb* out, const Limb* x, std::size_t size, Limb carry)
{
    for (std::size_t i = 0; i < size; ++i) {
        out[i] = x[i] + carry;
        carry = out[i] < carry ? 1 : 0;
    }
    return carry;
}

/// out = x - y, returns the borrow. out may be x or y.
inline Limb Subtract(Limb* out, const Limb* x, const Limb* y, std::size_t size)
{
    if (size > ShortLimbs) {
        return mpn_sub_n(out, x, y, static_cast<mp_size_t>(size));
    }
    Limb borrow = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const DoubleLimb difference = DoubleLimb{x[i]} - y[i] - borrow;
        out[i] = static_cast<Limb>(difference);
        borrow = static_cast<Limb>(difference >> LimbBits) & 1U;
    }
    return borrow;
}

/// out = x - borrow, returns the borrow. out may be x.
inline Limb SubtractBorrow(Limb* out, const Limb* x, std::size_t size, Limb borrow)
{
    for (std::size_t i = 0; i < size; ++i) {
        const Limb limb = x[i];
        out[i] = limb - borrow;
        borrow = limb < borrow ? 1 : 0;
    }
    return borrow;
}

/// Negates in two's complement when wanted is 1, does nothing when it is 0; the two take the same time, since
/// which of them it is cannot be foreseen.
inline void NegateIf(Limb wanted, Limb* x, std::size_t size)
{
    const Limb mask = Limb{0} - wanted;
    Limb carry = wanted;
    for (std::size_t i = 0; i < size; ++i) {
        const Limb limb = (x[i] ^ mask) + carry;
        carry &= limb == 0 ? 1U : 0U;
        x[i] = limb;
    }
}

/// out (size + 1 limbs) = x * y
inline void MultiplyByLimb(Limb* out, const Limb* x, std::size_t size, Limb y)
{
    Limb carry = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const DoubleLimb product = DoubleLimb{x[i]} * y + carry;
        out[i] = static_cast<Limb>(product);
        carry = static_cast<Limb>(product >> LimbBits);
    }
    out[size] = carry;
}

/// out (size + 1 limbs, the last one not yet in use) += x * y
inline void AddProductByLimb(Limb* out, const Limb* x, std::size_t size, Limb y)
{
    Limb carry = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const DoubleLimb product = DoubleLimb{x[i]} * y + out[i] + carry;
        out[i] = static_cast<Limb>(product);
        carry = static_cast<Limb>(product >> LimbBits);
    }
    out[size] = carry;
}

/// out (xSize + ySize limbs, apart from x and y) = x * y; xSize >= ySize >= 1.
inline void Multiply(Limb* out, const Limb* x, std::size_t xSize, const Limb* y, std::size_t ySize)
{
    if (xSize > ShortLimbs || ySize > ShortLimbs / 2) {
        mpn_mul(out, x, static_cast<mp_size_t>(xSize), y, static_cast<mp_size_t>(ySize));
        return;
    }
    MultiplyByLimb(out, x, xSize, y[0]);
    for (std::size_t i = 1; i < ySize; ++i) {
        AddProductByLimb(out + i, x, xSize, y[i]);
    }
}
}  // namespace ZULExpLimbs

#endif
