#ifndef ZULTestBigInteger_h
#define ZULTestBigInteger_h

#include <gmpxx.h>

#include <cstddef>
#include <cstdint>
#include <utility>

/// Integers without a limit, in a type whose expressions are values, so that formula templates take it.
namespace ZULTest
{
class BigInteger
{
public:
    BigInteger() = default;
    explicit BigInteger(std::int64_t value) : m_Value(static_cast<long>(value)) {}
    explicit BigInteger(mpz_class value) : m_Value(std::move(value)) {}

    static BigInteger PowerOfTwo(unsigned int exponent) { return BigInteger(mpz_class(1) << exponent); }
    /// From limbs in two's complement, least significant first.
    template <class Limbs>
    static BigInteger FromLimbs(const Limbs& limbs, std::size_t count)
    {
        mpz_class value = static_cast<long>(static_cast<std::int64_t>(limbs(count - 1)));
        for (std::size_t i = count - 1; i-- > 0;) {
            value <<= 64;
            value += mpz_class(static_cast<unsigned long>(limbs(i)));
        }
        return BigInteger(std::move(value));
    }
    /// 64 bits of the two's complement.
    std::uint64_t GetLimb(std::size_t index) const
    {
        mpz_class part;
        mpz_fdiv_q_2exp(part.get_mpz_t(), m_Value.get_mpz_t(), 64 * index);
        mpz_fdiv_r_2exp(part.get_mpz_t(), part.get_mpz_t(), 64);
        return part.get_ui();
    }

    int Sign() const { return sgn(m_Value); }
    const mpz_class& Get() const { return m_Value; }
    BigInteger Magnitude() const { return BigInteger(mpz_class(abs(m_Value))); }
    /// Rounded down.
    BigInteger ShiftedRight(unsigned int places) const
    {
        mpz_class result;
        mpz_fdiv_q_2exp(result.get_mpz_t(), m_Value.get_mpz_t(), places);
        return BigInteger(std::move(result));
    }

    friend bool operator==(const BigInteger& x, const BigInteger& y) { return x.m_Value == y.m_Value; }
    friend bool operator<(const BigInteger& x, const BigInteger& y) { return x.m_Value < y.m_Value; }
    friend bool operator<=(const BigInteger& x, const BigInteger& y) { return x.m_Value <= y.m_Value; }
    friend BigInteger operator-(const BigInteger& x) { return BigInteger(mpz_class(-x.m_Value)); }
    friend BigInteger operator+(const BigInteger& x, const BigInteger& y)
    {
        return BigInteger(mpz_class(x.m_Value + y.m_Value));
    }
    friend BigInteger operator-(const BigInteger& x, const BigInteger& y)
    {
        return BigInteger(mpz_class(x.m_Value - y.m_Value));
    }
    friend BigInteger operator*(const BigInteger& x, const BigInteger& y)
    {
        return BigInteger(mpz_class(x.m_Value * y.m_Value));
    }

private:
    mpz_class m_Value;
};
}  // namespace ZULTest

#endif
