#include "ZULExpBigIntegerTS.h"

#include <bit>
#include <cstring>
#include <limits>
#include <new>

#include "ZULExpBigIntegerInline.h"

using namespace ZULExpLimbs;

namespace
{
constexpr std::size_t MaximumLimbs = std::numeric_limits<std::int32_t>::max();
constexpr std::size_t MantissaBits = 53;
constexpr std::uint64_t MantissaMask = (std::uint64_t{1} << 52) - 1;
constexpr std::uint64_t HalfExponentBits = std::uint64_t{1022} << 52;

std::size_t ShiftedRoom(std::size_t size, std::uint64_t shift)
{
    if (shift / LimbBits > MaximumLimbs) {
        throw std::bad_alloc();
    }
    return shift / LimbBits + size + 1;
}

/// Writes x << shift into a room of that many limbs and returns how many are in use.
std::size_t WriteShifted(Limb* out, const Limb* x, std::size_t size, std::uint64_t shift)
{
    if (size == 0) {
        return 0;
    }
    const std::size_t low = shift / LimbBits;
    std::fill_n(out, low, 0U);
    const Limb top = ShiftLeft(out + low, x, size, static_cast<unsigned int>(shift % LimbBits));
    out[low + size] = top;
    return low + size + (top != 0 ? 1U : 0U);
}
}  // namespace

ZULExpBigIntegerTS::ZULExpBigIntegerTS(std::int64_t value) noexcept : ZULExpBigIntegerTS()
{
    const auto bits = static_cast<std::uint64_t>(value);
    SetMagnitude(value < 0 ? std::uint64_t{0} - bits : bits, value < 0);
}

ZULExpBigIntegerTS ZULExpBigIntegerTS::FromLimbs(const std::uint64_t* limbs, std::size_t nbLimbs,
                                                 bool isNegative)
{
    ZULExpBigIntegerTS result;
    std::copy_n(limbs, nbLimbs, result.MakeRoom(nbLimbs));
    result.SetSize(nbLimbs, isNegative);
    return result;
}

ZULExpBigIntegerTS::ZULExpBigIntegerTS(const ZULExpBigIntegerTS& other) : ZULExpBigIntegerTS()
{
    std::copy_n(other.Limbs(), std::max(other.Size(), PaddedLimbs), MakeRoom(other.Size()));
    m_SignedSize = other.m_SignedSize;
}

ZULExpBigIntegerTS& ZULExpBigIntegerTS::operator=(const ZULExpBigIntegerTS& other)
{
    if (this == &other) {
        return *this;
    }
    if (other.Size() > m_Capacity) {
        return *this = ZULExpBigIntegerTS(other);
    }
    std::copy_n(other.Limbs(), std::max(other.Size(), PaddedLimbs), Limbs());
    m_SignedSize = other.m_SignedSize;
    return *this;
}

std::uint64_t* ZULExpBigIntegerTS::MakeRoom(std::size_t limbs)
{
    if (limbs <= m_Capacity) {
        return Limbs();
    }
    if (limbs > MaximumLimbs) {
        throw std::bad_alloc();
    }
    auto* const heap = new std::uint64_t[limbs];
    FreeHeap();
    m_Heap = heap;
    m_Capacity = static_cast<std::uint32_t>(limbs);
    return heap;
}

void ZULExpBigIntegerTS::SetSize(std::size_t size, bool isNegative) noexcept
{
    const std::uint64_t* const limbs = Limbs();
    while (size > 0 && limbs[size - 1] == 0) {
        --size;
    }
    const auto signedSize = static_cast<std::int32_t>(size);
    m_SignedSize = isNegative ? -signedSize : signedSize;
    Pad();
}

void ZULExpBigIntegerTS::Pad() noexcept
{
    std::uint64_t* const limbs = Limbs();
    for (std::size_t i = Size(); i < PaddedLimbs; ++i) {
        limbs[i] = 0;
    }
}

std::size_t ZULExpBigIntegerTS::GetBitLength() const noexcept
{
    const std::size_t size = Size();
    return size == 0 ? 0 : size * LimbBits - static_cast<std::size_t>(std::countl_zero(Limbs()[size - 1]));
}

std::size_t ZULExpBigIntegerTS::GetTrailingZeros() const noexcept
{
    if (IsZero()) {
        return 0;
    }
    const std::uint64_t* const limbs = Limbs();
    std::size_t i = 0;
    while (limbs[i] == 0) {
        ++i;
    }
    return i * LimbBits + static_cast<std::size_t>(std::countr_zero(limbs[i]));
}

std::size_t ZULExpBigIntegerTS::DropLowZeroLimbs() noexcept
{
    std::uint64_t* const limbs = Limbs();
    const std::size_t size = Size();
    std::size_t zeros = 0;
    while (zeros < size && limbs[zeros] == 0) {
        ++zeros;
    }
    if (zeros > 0) {
        std::copy(limbs + zeros, limbs + size, limbs);
        const auto dropped = static_cast<std::int32_t>(zeros);
        m_SignedSize += m_SignedSize < 0 ? dropped : -dropped;
        Pad();
    }
    return zeros;
}

ZULExpBigIntegerTS ZULExpBigIntegerTS::operator-() const
{
    ZULExpBigIntegerTS result(*this);
    result.m_SignedSize = -result.m_SignedSize;
    return result;
}

void ZULExpBigIntegerTS::SetShiftedLeft(const ZULExpBigIntegerTS& x, std::uint64_t shift)
{
    std::uint64_t* const out = MakeRoom(ShiftedRoom(x.Size(), shift));
    SetSize(WriteShifted(out, x.Limbs(), x.Size(), shift), x.m_SignedSize < 0);
}

void ZULExpBigIntegerTS::SetLongShiftedSum(const ZULExpBigIntegerTS& x, std::uint64_t shift,
                                           const ZULExpBigIntegerTS& y, bool isYNegated)
{
    const std::size_t ySize = y.Size();
    // Room for the longer of the two and a carry.
    std::uint64_t* const out = MakeRoom(std::max(ShiftedRoom(x.Size(), shift), ySize) + 1);
    const std::size_t xSize = WriteShifted(out, x.Limbs(), x.Size(), shift);
    const std::size_t common = std::min(xSize, ySize);
    const std::uint64_t* const yLimbs = y.Limbs();
    const bool isXNegative = x.m_SignedSize < 0;
    const std::size_t size = std::max(xSize, ySize);
    // Above the common limbs stand those of the longer number.
    const std::uint64_t* const rest = xSize >= ySize ? out + common : yLimbs + common;
    if (isXNegative == ((y.m_SignedSize < 0) != isYNegated)) {
        const Limb carry = Add(out, out, yLimbs, common);
        out[size] = AddCarry(out + common, rest, size - common, carry);
        SetSize(size + 1, isXNegative);
        return;
    }
    Limb borrow = Subtract(out, out, yLimbs, common);
    if (xSize >= ySize) {
        borrow = SubtractBorrow(out + common, rest, size - common, borrow);
    } else {
        // The difference is negative; in two's complement its upper limbs are those of -(rest + borrow).
        AddCarry(out + common, rest, size - common, borrow);
        NegateIf(1, out + common, size - common);
        borrow = 1;
    }
    NegateIf(borrow, out, size);
    SetSize(size, isXNegative != (borrow != 0));
}

void ZULExpBigIntegerTS::SetLongProduct(const ZULExpBigIntegerTS& x, const ZULExpBigIntegerTS& y)
{
    const std::size_t xSize = x.Size();
    const std::size_t ySize = y.Size();
    if (xSize == 0 || ySize == 0) {
        return;
    }
    std::uint64_t* const out = MakeRoom(xSize + ySize);
    if (xSize >= ySize) {
        Multiply(out, x.Limbs(), xSize, y.Limbs(), ySize);
    } else {
        Multiply(out, y.Limbs(), ySize, x.Limbs(), xSize);
    }
    SetSize(xSize + ySize, (x.m_SignedSize < 0) != (y.m_SignedSize < 0));
}

ZULExpBigIntegerTS operator+(const ZULExpBigIntegerTS& x, const ZULExpBigIntegerTS& y)
{
    ZULExpBigIntegerTS sum;
    sum.SetShiftedSum(x, 0, y, false);
    return sum;
}

ZULExpBigIntegerTS operator-(const ZULExpBigIntegerTS& x, const ZULExpBigIntegerTS& y)
{
    ZULExpBigIntegerTS difference;
    difference.SetShiftedSum(x, 0, y, true);
    return difference;
}

ZULExpBigIntegerTS operator*(const ZULExpBigIntegerTS& x, const ZULExpBigIntegerTS& y)
{
    ZULExpBigIntegerTS product;
    product.SetProduct(x, y);
    return product;
}

ZULExpBigIntegerTS ZULExpBigIntegerTS::ShiftedLeft(std::size_t bits) const
{
    ZULExpBigIntegerTS result;
    if (!IsZero()) {
        result.SetShiftedLeft(*this, bits);
    }
    return result;
}

ZULExpBigIntegerTS ZULExpBigIntegerTS::ShiftedRight(std::size_t bits) const
{
    ZULExpBigIntegerTS result;
    const std::size_t dropped = bits / LimbBits;
    const std::size_t size = Size();
    if (dropped >= size) {
        return result;
    }
    const std::uint64_t* const limbs = Limbs() + dropped;
    const auto kept = static_cast<mp_size_t>(size - dropped);
    std::uint64_t* const out = result.MakeRoom(size - dropped);
    if (bits % LimbBits == 0) {
        mpn_copyi(out, limbs, kept);
    } else {
        mpn_rshift(out, limbs, kept, static_cast<unsigned int>(bits % LimbBits));
    }
    result.SetSize(size - dropped, m_SignedSize < 0);
    return result;
}

int Compare(const ZULExpBigIntegerTS& x, const ZULExpBigIntegerTS& y) noexcept
{
    if (x.m_SignedSize != y.m_SignedSize) {
        return x.m_SignedSize < y.m_SignedSize ? -1 : 1;
    }
    if (x.IsZero()) {
        return 0;
    }
    const int order = mpn_cmp(x.Limbs(), y.Limbs(), static_cast<mp_size_t>(x.Size()));
    const int sign = (order > 0 ? 1 : 0) - (order < 0 ? 1 : 0);
    return x.m_SignedSize < 0 ? -sign : sign;
}

std::uint64_t ZULExpBigIntegerTS::RoundedTop(std::size_t bits) const noexcept
{
    const std::size_t length = GetBitLength();
    const std::uint64_t* const limbs = Limbs();
    if (length <= bits) {
        return length == 0 ? 0 : limbs[0];
    }
    const std::size_t dropped = length - bits;
    const auto bitAt = [limbs](std::size_t i) { return ((limbs[i / LimbBits] >> (i % LimbBits)) & 1U) != 0; };
    std::uint64_t top = 0;
    for (std::size_t i = dropped / LimbBits, size = Size(); i < size; ++i) {
        // At most two limbs hold the top bits.
        const std::size_t position = i * LimbBits;
        top |= position >= dropped ? limbs[i] << (position - dropped) : limbs[i] >> (dropped - position);
    }
    const bool isHalfOrMore = bitAt(dropped - 1);
    const bool isAboveHalf = isHalfOrMore && GetTrailingZeros() < dropped - 1;
    return isAboveHalf || (isHalfOrMore && (top & 1U) != 0) ? top + 1 : top;
}

void ZULExpBigIntegerTS::ConvertToDouble(double& mantissa, std::int64_t& exponent) const noexcept
{
    if (IsZero()) {
        mantissa = 0.0;
        exponent = 0;
        return;
    }
    const std::size_t length = GetBitLength();
    std::uint64_t top = RoundedTop(MantissaBits);
    if (length < MantissaBits) {
        top <<= MantissaBits - length;
    }
    const bool isCarried = (top >> MantissaBits) != 0;
    exponent = static_cast<std::int64_t>(length) + (isCarried ? 1 : 0);
    mantissa = std::bit_cast<double>(HalfExponentBits | (top & MantissaMask));
}
