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

/// Carries of fixed-length sums, for compilers to turn into chains of the processor's own.
inline Limb AddWithCarry(Limb x, Limb y, Limb& carry)
{
    const DoubleLimb sum = DoubleLimb{x} + y + carry;
    carry = static_cast<Limb>(sum >> LimbBits);
    return static_cast<Limb>(sum);
}

/// out (5 limbs) = x * 2^bits + y, or - y: its magnitude. x and y have 4 limbs, bits < 64. Returns 1 when the
/// result was negative, else 0.
inline Limb ShortShiftedSum(Limb* out, const Limb* x, unsigned int bits, const Limb* y, bool isDifference)
{
    const Limb mask = isDifference ? ~Limb{0} : 0;
    const unsigned int rest = LimbBits - 1 - bits;
    Limb carry = mask & 1U;  // minus y is its complement plus 1
    const Limb s0 = AddWithCarry(x[0] << bits, y[0] ^ mask, carry);
    const Limb s1 = AddWithCarry((x[1] << bits) | (x[0] >> 1 >> rest), y[1] ^ mask, carry);
    const Limb s2 = AddWithCarry((x[2] << bits) | (x[1] >> 1 >> rest), y[2] ^ mask, carry);
    const Limb s3 = AddWithCarry((x[3] << bits) | (x[2] >> 1 >> rest), y[3] ^ mask, carry);
    const Limb s4 = AddWithCarry(x[3] >> 1 >> rest, mask, carry);
    // A difference without carry is negative. Negating it costs less than a branch that cannot be foreseen.
    const Limb isNegative = mask & (carry ^ 1U) & 1U;
    const Limb flip = Limb{0} - isNegative;
    carry = isNegative;
    out[0] = AddWithCarry(s0 ^ flip, 0, carry);
    out[1] = AddWithCarry(s1 ^ flip, 0, carry);
    out[2] = AddWithCarry(s2 ^ flip, 0, carry);
    out[3] = AddWithCarry(s3 ^ flip, 0, carry);
    out[4] = AddWithCarry(s4 ^ flip, 0, carry);
    return isNegative;
}

/// out (4 limbs) = x (3 limbs) * y
inline void ShortProduct3x1(Limb* out, const Limb* x, Limb y)
{
    const DoubleLimb p0 = DoubleLimb{x[0]} * y;
    const DoubleLimb p1 = DoubleLimb{x[1]} * y + static_cast<Limb>(p0 >> LimbBits);
    const DoubleLimb p2 = DoubleLimb{x[2]} * y + static_cast<Limb>(p1 >> LimbBits);
    out[0] = static_cast<Limb>(p0);
    out[1] = static_cast<Limb>(p1);
    out[2] = static_cast<Limb>(p2);
    out[3] = static_cast<Limb>(p2 >> LimbBits);
}

/// out (4 limbs) = x (2 limbs) * y (2 limbs)
inline void ShortProduct2x2(Limb* out, const Limb* x, const Limb* y)
{
    const DoubleLimb p00 = DoubleLimb{x[0]} * y[0];
    const DoubleLimb p10 = DoubleLimb{x[1]} * y[0] + static_cast<Limb>(p00 >> LimbBits);
    const DoubleLimb p01 = DoubleLimb{x[0]} * y[1] + static_cast<Limb>(p10);
    const DoubleLimb p11 =
        DoubleLimb{x[1]} * y[1] + static_cast<Limb>(p10 >> LimbBits) + static_cast<Limb>(p01 >> LimbBits);
    out[0] = static_cast<Limb>(p00);
    out[1] = static_cast<Limb>(p01);
    out[2] = static_cast<Limb>(p11);
    out[3] = static_cast<Limb>(p11 >> LimbBits);
}

/// Number of limbs without the zero ones at the top, of at most 4.
inline std::size_t ShortSize(const Limb* x)
{
    return x[3] != 0 ? 4U : x[2] != 0 ? 3U : x[1] != 0 ? 2U : x[0] != 0 ? 1U : 0U;
}
}  // namespace ZULExpLimbs

#endif
