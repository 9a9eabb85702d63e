#ifndef ZULMRSBSPMeetingIntegers_h
#define ZULMRSBSPMeetingIntegers_h

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "ZULMRSBSPDirectReads.h"
#include "ZULMRSBSPFormulas.h"
#include "ZULMRSBSPIntegerForms.h"
#include "ZULMRSBSPShortInteger.h"
#include "ZULMRSBSPSign.h"

/// The meeting point of planes that keep exact integers, by integer instructions alone. Proofs:
/// docs/arithmetic.md.
namespace ZULMRSBSPMeetingIntegers
{
using ZULMRSBSPIntegerForms::ErrorOfCutting;
using ZULMRSBSPIntegerForms::InputBits;
using ZULMRSBSPShortIntegers::Wide;
using ExactPoint = std::array<ZULMRSBSPShortInteger<3>, 4>;

/// W of the meeting point in the order of the planes given, and the point's form, which stands for a positive
/// W. Where W is zero there is none.
struct Meeting {
    ZULMRSBSPSign m_W;
    ZULMRSBSPIntegerForm m_Form;
};

//---------------------------------------------------------------- numbers

/// An integer whose products are the compiler's, of twice the length.
struct Whole {
    std::int64_t m_Value;

    friend Whole operator-(Whole x) { return {-x.m_Value}; }
    friend Wide operator*(Whole x, Whole y) { return Wide{x.m_Value} * y.m_Value; }
};
/// An integer of whose products only the upper half is kept, rounded down.
struct Upper {
    std::int64_t m_Value;

    friend Upper operator-(Upper x) { return {-x.m_Value}; }
    friend std::int64_t operator*(Upper x, Upper y)
    {
        return static_cast<std::int64_t>((Wide{x.m_Value} * y.m_Value) >> 64);
    }
};
using Form = ZULMRSBSPIntegerForm;
using Minors = std::array<Wide, 6>;

template <class Number>
std::array<Number, 4> ToRow(const Form& form)
{
    const auto& v = form.m_Values;
    return {{{v[0]}, {v[1]}, {v[2]}, {v[3]}}};
}

/// All bits but those that only repeat the sign.
inline std::uint64_t BitsInUse(std::int64_t value)
{
    return static_cast<std::uint64_t>(value ^ (value >> 63));
}

/// Cutting numbers off by one number of places, so that the longest is left with so many bits.
template <std::size_t Size>
class Cutting
{
public:
    Cutting(const std::array<Wide, Size>& numbers, int bits)
    {
        for (const Wide number : numbers) {
            m_Used |= BitsInUse(static_cast<std::int64_t>(number >> 64));
            m_LowBits |= static_cast<std::uint64_t>(number);
        }
        m_Places = static_cast<unsigned int>(128 - bits - std::countl_zero(m_Used | 1U));
    }
    /// Whether the longest has more than 64 bits; nothing below holds where it has not.
    bool IsLong() const { return m_Used != 0; }
    /// At least one; at most 63 is for the caller to see.
    unsigned int GetPlaces() const { return m_Places; }
    /// Rounded down.
    std::int64_t Cut(Wide number) const
    {
        const auto high = static_cast<std::uint64_t>(number >> 64);
        const auto low = static_cast<std::uint64_t>(number);
        return static_cast<std::int64_t>((low >> (m_Places & 63U)) | (high << (-m_Places & 63U)));
    }
    /// Nothing is lost.
    bool IsExact() const { return (m_LowBits << (-m_Places & 63U)) == 0; }

private:
    std::uint64_t m_Used = 0;
    std::uint64_t m_LowBits = 0;
    unsigned int m_Places;
};

//---------------------------------------------------------------- the meeting point

/// Bits of a minor that fill an integer.
constexpr int BitsOfMinors = 63;
/// Three floors, and three minors each off by less than one, times 2^62 and divided by 2^64.
constexpr std::int64_t ErrorOfSums = 4;
/// Of sums, the longest must have at least so many bits: fewer are left where much has cancelled.
constexpr int FewestBits = 55;

/// In numbers of three limbs.
[[gnu::noinline]] inline Meeting MeetExactly(const Form& p, const Form& q, const Form& r)
{
    using ZULMRSBSPIntegerForms::ToInputs;
    const ExactPoint meeting = ZULMRSBSPFormulas::MeetingPoint(ToInputs(p), ToInputs(q), ToInputs(r));
    Meeting result{meeting[3].Sign(), {}};
    if (!result.m_W.IsZero()) {
        result.m_Form = ZULMRSBSPIntegerForms::FromExact(meeting);
    }
    for (std::int64_t& value : result.m_Form.m_Values) {
        value = result.m_W.IsNegative() ? -value : value;
    }
    return result;
}

/// From minors that are exact when cut off. False when they are not, or their sums are short or zero.
[[gnu::noinline]] inline bool MeetByExactMinors(const Form& p, const Minors& minors, Meeting& meeting)
{
    const Cutting<6> cutting(minors, BitsOfMinors - 1);
    std::array<Whole, 6> factors;
    for (std::size_t i = 0; i < 6; ++i) {
        factors[i] = {cutting.Cut(minors[i])};
    }
    const std::array<Wide, 4> sums = ZULMRSBSPFormulas::MeetingPointOfMinors(ToRow<Whole>(p), factors);
    const Cutting<4> last(sums, InputBits);
    if (!cutting.IsLong() || !cutting.IsExact() || !last.IsLong() || last.GetPlaces() > 63 || sums[3] == 0) {
        return false;
    }
    const std::int64_t sign = sums[3] < 0 ? -1 : 0;
    for (std::size_t i = 0; i < 4; ++i) {
        meeting.m_Form.m_Values[i] = (last.Cut(sums[i]) ^ sign) - sign;
    }
    meeting.m_Form.m_Error = last.IsExact() ? 0 : ErrorOfCutting;
    meeting.m_W = ZULMRSBSPSign::FromNumber(static_cast<int>(sign | 1));
    return true;
}

/// The minors are exact; sums of them, both cut off, nearly always decide. Exact numbers are made where they
/// are short, and where W may be zero or much has cancelled.
inline Meeting Meet(const Form& p, const Form& q, const Form& r)
{
    const Minors minors = ZULMRSBSPFormulas::MeetingMinors(ToRow<Whole>(q), ToRow<Whole>(r));
    const Cutting<6> cutting(minors, BitsOfMinors);
    Meeting meeting;
    if (cutting.IsExact()) {
        return MeetByExactMinors(p, minors, meeting) ? meeting : MeetExactly(p, q, r);
    }
    const std::array<Upper, 6> factors = {{{cutting.Cut(minors[0])},
                                           {cutting.Cut(minors[1])},
                                           {cutting.Cut(minors[2])},
                                           {cutting.Cut(minors[3])},
                                           {cutting.Cut(minors[4])},
                                           {cutting.Cut(minors[5])}}};
    const auto v = ZULMRSBSPFormulas::MeetingPointOfMinors(ToRow<Upper>(p), factors);
    const std::uint64_t used = BitsInUse(v[0]) | BitsInUse(v[1]) | BitsInUse(v[2]) | BitsInUse(v[3]);
    constexpr std::uint64_t fewest = std::uint64_t{1} << (FewestBits - 1);
    const std::int64_t sign = v[3] >> 63;
    if (!cutting.IsLong() || used - fewest >= (std::uint64_t{1} << InputBits) - fewest ||
        (v[3] < ErrorOfSums && v[3] > -ErrorOfSums)) [[unlikely]] {
        return MeetExactly(p, q, r);
    }
    meeting.m_W = ZULMRSBSPSign::FromNumber(static_cast<int>(sign | 1));
    meeting.m_Form.m_Values = {(v[0] ^ sign) - sign, (v[1] ^ sign) - sign, (v[2] ^ sign) - sign,
                               (v[3] ^ sign) - sign};
    meeting.m_Form.m_Error = ErrorOfSums + 1;
    return meeting;
}

/// The exact integers of the planes of a point, where they have them.
class Planes
{
public:
    [[gnu::always_inline]] explicit Planes(const ZULMRSBSPPoint& point)
        : m_Forms{ZULMRSBSPDirectReads::ExactIntegers(point.GetP1()),
                  ZULMRSBSPDirectReads::ExactIntegers(point.GetP2()),
                  ZULMRSBSPDirectReads::ExactIntegers(point.GetP3())}
    {
    }

    /// Whether all have them.
    explicit operator bool() const
    {
        return m_Forms[0] != nullptr && m_Forms[1] != nullptr && m_Forms[2] != nullptr;
    }
    /// (X, Y, Z, W), each times one factor.
    [[gnu::always_inline]] ExactPoint MeetingPoint() const
    {
        using ZULMRSBSPIntegerForms::ToInputs;
        const auto minors = ZULMRSBSPFormulas::MeetingMinors(ToInputs(*m_Forms[1]), ToInputs(*m_Forms[2]));
        return ZULMRSBSPFormulas::MeetingPointOfMinors(ToInputs(*m_Forms[0]), minors);
    }
    Meeting Meet() const { return ZULMRSBSPMeetingIntegers::Meet(*m_Forms[0], *m_Forms[1], *m_Forms[2]); }

private:
    std::array<const ZULMRSBSPIntegerForm*, 3> m_Forms;
};
}  // namespace ZULMRSBSPMeetingIntegers

#endif
