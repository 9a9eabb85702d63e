#ifndef ZULExpFloatStatus_h
#define ZULExpFloatStatus_h

// The only file that knows the processor: its control and status word, its vector registers, its pause hint.
// Everything here acts on the calling thread alone. ZUL_FORCE_PORTABLE selects the code for other processors,
// for tests: it changes the layout of intervals, so all of a program must be built alike.

#if defined(__SSE2__) && !defined(ZUL_FORCE_PORTABLE)
#define ZUL_HAS_SSE2 1
#include <emmintrin.h>
#else
#define ZUL_HAS_SSE2 0
#include <cfenv>
#endif

/// Bits of _statusfp(); the numbers are part of the interface.
enum ZULExpFloatStatusBits : unsigned int {
    ZULExpFloatInexact = 0x1,
    ZULExpFloatUnderflow = 0x2,
    ZULExpFloatOverflow = 0x4,
    ZULExpFloatZeroDivide = 0x8,
    ZULExpFloatInvalid = 0x10,
    ZULExpFloatDenormal = 0x80000
};

/// Underflow, overflow or denormal operand: what falsifies an error bound.
constexpr unsigned int ZULExpFloatFault = 0x80006;

namespace ZULExpProcessor
{
#if ZUL_HAS_SSE2

/// Rounding mode, exception masks, treatment of denormals and the sticky status flags, in one word.
using ControlWord = unsigned int;

constexpr ControlWord DefaultControlWord =
    0x1F80;  // nearest, every exception masked, denormals honoured, no flag
constexpr ControlWord UpwardControlWord = 0x5F80;  // the same, rounding towards plus infinity
constexpr ControlWord StatusFlags = 0x3F;

// Reading the word costs some 6 ns, writing it next to nothing. The memory clobbers keep loads and stores on
// their side.
inline ControlWord ReadControlWord()
{
    ControlWord word;
    __asm__ __volatile__("stmxcsr %0" : "=m"(word) : : "memory");
    return word;
}
inline void WriteControlWord(const ControlWord& word)
{
    __asm__ __volatile__("ldmxcsr %0" : : "m"(word) : "memory");
}
inline void SetDefaultControlWord()
{
    WriteControlWord(DefaultControlWord);
}
inline void SetUpwardControlWord()
{
    WriteControlWord(UpwardControlWord);
}

inline unsigned int StatusOf(const ControlWord& word)
{
    return ((word & 0x01U) << 4) | ((word & 0x02U) << 18) | ((word & 0x04U) << 1) | ((word & 0x08U) >> 1) |
           ((word & 0x10U) >> 3) | ((word & 0x20U) >> 5);
}
inline unsigned int ReadStatus()
{
    return StatusOf(ReadControlWord());
}
inline void ClearStatus()
{
    WriteControlWord(ReadControlWord() & ~StatusFlags);
}
/// Raises the overflow flag without a trap, even where the caller has unmasked it.
inline void RaiseOverflow()
{
    WriteControlWord(ReadControlWord() | 0x08U);
}

/// Two doubles that are computed together. The operations work on each of the two by itself.
using DoublePair = __m128d;

inline DoublePair MakePair(double first, double second)
{
    return _mm_set_pd(second, first);
}
inline double First(DoublePair x)
{
    return _mm_cvtsd_f64(x);
}
inline double Second(DoublePair x)
{
    return _mm_cvtsd_f64(_mm_unpackhi_pd(x, x));
}
inline DoublePair BothFirst(DoublePair x)
{
    return _mm_unpacklo_pd(x, x);
}
inline DoublePair BothSecond(DoublePair x)
{
    return _mm_unpackhi_pd(x, x);
}
inline DoublePair Exchanged(DoublePair x)
{
    return _mm_shuffle_pd(x, x, 1);
}
inline DoublePair Negated(DoublePair x)
{
    return _mm_xor_pd(x, _mm_set1_pd(-0.0));
}
inline DoublePair Sum(DoublePair x, DoublePair y)
{
    return _mm_add_pd(x, y);
}
inline DoublePair Product(DoublePair x, DoublePair y)
{
    return _mm_mul_pd(x, y);
}
inline DoublePair Quotient(DoublePair x, DoublePair y)
{
    return _mm_div_pd(x, y);
}
/// The greater one; without meaning where either is NaN.
inline DoublePair Maximum(DoublePair x, DoublePair y)
{
    return _mm_max_pd(x, y);
}
/// Where x >= 0, the first choice, else (NaN included) the second.
inline DoublePair ChooseBySign(DoublePair x, DoublePair ifNotNegative, DoublePair otherwise)
{
    const __m128d mask = _mm_cmpge_pd(x, _mm_setzero_pd());
    return _mm_or_pd(_mm_and_pd(mask, ifNotNegative), _mm_andnot_pd(mask, otherwise));
}
/// Not 0 when any of the doubles is NaN.
inline int HasNaN(DoublePair x)
{
    return _mm_movemask_pd(_mm_cmpunord_pd(x, x));
}
inline int HasNaN(DoublePair x, DoublePair y, DoublePair z, DoublePair t)
{
    return _mm_movemask_pd(_mm_or_pd(_mm_cmpunord_pd(x, y), _mm_cmpunord_pd(z, t)));
}

/// Pins a value that may live in a register: nothing computed from it afterwards can move before this place,
/// and what computes it cannot move behind. Arithmetic between two writes of the control word stays there
/// only when pinned.
inline void Pin(double& value)
{
    __asm__ __volatile__("" : "+x"(value));
}
inline void Pin(DoublePair& value)
{
    __asm__ __volatile__("" : "+x"(value));
}

/// The same for a decision that arithmetic has led to.
inline void Pin(int& value)
{
    __asm__ __volatile__("" : "+r"(value));
}

/// Tells the processor that this is a waiting loop.
inline void Pause()
{
    _mm_pause();
}

/// Whether the quiet operations below exist. They round to nearest whatever the control word says, raise no
/// flag and never trap; only denormal operands and results may count as zero.
inline bool HasQuietArithmetic()
{
    return __builtin_cpu_supports("avx512f") != 0;
}
inline double QuietSum(double x, double y)
{
    double result;
    __asm__("vaddsd %{rn-sae%}, %2, %1, %0" : "=x"(result) : "x"(x), "x"(y));
    return result;
}
inline double QuietDifference(double x, double y)
{
    double result;
    __asm__("vsubsd %{rn-sae%}, %2, %1, %0" : "=x"(result) : "x"(x), "x"(y));
    return result;
}
inline double QuietProduct(double x, double y)
{
    double result;
    __asm__("vmulsd %{rn-sae%}, %2, %1, %0" : "=x"(result) : "x"(x), "x"(y));
    return result;
}
/// The greater one; the second one where either is NaN.
inline double QuietMaximum(double x, double y)
{
    double result;
    __asm__("vmaxsd %{sae%}, %2, %1, %0" : "=x"(result) : "x"(x), "x"(y));
    return result;
}

#else

using ControlWord = std::fenv_t;

inline ControlWord ReadControlWord()
{
    ControlWord word;
    std::fegetenv(&word);
    return word;
}
inline void WriteControlWord(const ControlWord& word)
{
    std::fesetenv(&word);
}
inline void SetDefaultControlWord()
{
    std::fesetenv(FE_DFL_ENV);
    std::feclearexcept(FE_ALL_EXCEPT);
}
inline void SetUpwardControlWord()
{
    SetDefaultControlWord();
    std::fesetround(FE_UPWARD);
}

// No denormal flag here: a denormal operand that spoils a result raises underflow or inexact, and every range
// test that replaces a flag holds without it.
inline unsigned int ReadStatus()
{
    const int flags = std::fetestexcept(FE_ALL_EXCEPT);
    return ((flags & FE_INEXACT) != 0 ? ZULExpFloatInexact : 0U) |
           ((flags & FE_UNDERFLOW) != 0 ? ZULExpFloatUnderflow : 0U) |
           ((flags & FE_OVERFLOW) != 0 ? ZULExpFloatOverflow : 0U) |
           ((flags & FE_DIVBYZERO) != 0 ? ZULExpFloatZeroDivide : 0U) |
           ((flags & FE_INVALID) != 0 ? ZULExpFloatInvalid : 0U);
}
inline void ClearStatus()
{
    std::feclearexcept(FE_ALL_EXCEPT);
}
inline void RaiseOverflow()
{
    std::fenv_t saved;
    std::fexcept_t overflow;
    std::feholdexcept(&saved);
    std::feraiseexcept(FE_OVERFLOW);
    std::fegetexceptflag(&overflow, FE_OVERFLOW);
    std::fesetenv(&saved);
    std::fesetexceptflag(&overflow, FE_OVERFLOW);
}

struct DoublePair {
    double m_First;
    double m_Second;
};

inline DoublePair MakePair(double first, double second)
{
    return {first, second};
}
inline double First(DoublePair x)
{
    return x.m_First;
}
inline double Second(DoublePair x)
{
    return x.m_Second;
}
inline DoublePair BothFirst(DoublePair x)
{
    return {x.m_First, x.m_First};
}
inline DoublePair BothSecond(DoublePair x)
{
    return {x.m_Second, x.m_Second};
}
inline DoublePair Exchanged(DoublePair x)
{
    return {x.m_Second, x.m_First};
}
inline DoublePair Negated(DoublePair x)
{
    return {-x.m_First, -x.m_Second};
}
inline DoublePair Sum(DoublePair x, DoublePair y)
{
    return {x.m_First + y.m_First, x.m_Second + y.m_Second};
}
inline DoublePair Product(DoublePair x, DoublePair y)
{
    return {x.m_First * y.m_First, x.m_Second * y.m_Second};
}
inline DoublePair Quotient(DoublePair x, DoublePair y)
{
    return {x.m_First / y.m_First, x.m_Second / y.m_Second};
}
inline DoublePair Maximum(DoublePair x, DoublePair y)
{
    return {x.m_First > y.m_First ? x.m_First : y.m_First, x.m_Second > y.m_Second ? x.m_Second : y.m_Second};
}
inline DoublePair ChooseBySign(DoublePair x, DoublePair ifNotNegative, DoublePair otherwise)
{
    return {x.m_First >= 0.0 ? ifNotNegative.m_First : otherwise.m_First,
            x.m_Second >= 0.0 ? ifNotNegative.m_Second : otherwise.m_Second};
}
inline int HasNaN(DoublePair x)
{
    return x.m_First != x.m_First || x.m_Second != x.m_Second ? 1 : 0;
}
inline int HasNaN(DoublePair x, DoublePair y, DoublePair z, DoublePair t)
{
    return HasNaN(x) | HasNaN(y) | HasNaN(z) | HasNaN(t);
}

inline void Pin(double& value)
{
    __asm__ __volatile__("" : "+m"(value) : : "memory");
}
inline void Pin(DoublePair& value)
{
    __asm__ __volatile__("" : "+m"(value) : : "memory");
}
inline void Pin(int& value)
{
    __asm__ __volatile__("" : "+r"(value) : : "memory");
}
inline void Pause() {}

constexpr bool HasQuietArithmetic()
{
    return false;
}
inline double QuietSum(double x, double y)
{
    return x + y;
}
inline double QuietDifference(double x, double y)
{
    return x - y;
}
inline double QuietProduct(double x, double y)
{
    return x * y;
}
inline double QuietMaximum(double x, double y)
{
    return x > y ? x : y;
}

#endif
}  // namespace ZULExpProcessor

/// The status flags raised on this thread since they were last cleared, as ZULExpFloatStatusBits.
inline unsigned int _statusfp()  // NOLINT(bugprone-reserved-identifier): the run-time library's own name
{
    return ZULExpProcessor::ReadStatus();
}

/// Clears the status flags of this thread and returns what they were.
inline unsigned int _clearfp()  // NOLINT(bugprone-reserved-identifier)
{
    const unsigned int before = ZULExpProcessor::ReadStatus();
    ZULExpProcessor::ClearStatus();
    return before;
}

/// While alive, the calling thread computes in the default environment (nearest, all exceptions masked,
/// denormals honoured) and starts with no flag raised. The destructor puts the caller's word back, its flags
/// included. Nests.
class ZULExpFloatScope
{
public:
    ZULExpFloatScope() : m_Saved(ZULExpProcessor::ReadControlWord())
    {
        ZULExpProcessor::SetDefaultControlWord();
    }
    ~ZULExpFloatScope() { ZULExpProcessor::WriteControlWord(m_Saved); }
    ZULExpFloatScope(const ZULExpFloatScope&) = delete;
    ZULExpFloatScope& operator=(const ZULExpFloatScope&) = delete;

    /// True when underflow, overflow or a denormal operand has occurred since construction (or the last
    /// _clearfp()).
    bool IsFaulted() const { return (ZULExpProcessor::ReadStatus() & ZULExpFloatFault) != 0; }

private:
    ZULExpProcessor::ControlWord m_Saved;
};

#endif
