#ifndef ZULMRSBSPSignKernels_h
#define ZULMRSBSPSignKernels_h

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include "ZULMRSBSPFilter.h"
#include "ZULMRSBSPFormulas.h"
#include "ZULMRSBSPIntegerForms.h"
#include "ZULMRSBSPQuietFilter.h"
#include "ZULMRSBSPShortInteger.h"
#include "ZULMRSBSPSign.h"
#include "ZULMRSBSPStages.h"

// The kernels on plain doubles. Each names its polynomial, the units K of its error bound, its shortcut where
// it has one, and whether its exact stage answers undecided for input that is not finite. "Units" is the
// number of roundings on the longest path from an input to the result; K is at least twice that, unless said,
// which covers the rounding of the magnitude and of the bound and whatever underflow the range test lets
// through. Proofs: docs/arithmetic.md.

struct ZULMRSBSPDeterminant2x2Kernel {
    static constexpr std::size_t NbInputs = 4;
    static constexpr int K = 6;  // product, difference: 2 units
    static constexpr bool ReportsFault = false;

    template <class Number>
    static Number Value(const std::array<Number, NbInputs>& x)
    {
        return ZULMRSBSPFormulas::Determinant2x2(x[0], x[1], x[2], x[3]);
    }
    static ZULMRSBSPSign Shortcut(const std::array<int, NbInputs>& s)
    {
        return ZULMRSBSPShortcut::SignOfSum(s[0] * s[3], -(s[1] * s[2]));
    }
    static ZULMRSBSPSign ByIntegers(const std::array<double, NbInputs>& x)
    {
        using namespace ZULMRSBSPShortIntegers;
        const Row<2> p = Cut<2>({x[0], x[1]});
        const Row<2> q = Cut<2>({x[2], x[3]});
        return p.m_IsExact && q.m_IsExact
                   ? SignOf(ZULMRSBSPFormulas::Determinant2x2<Wide>(p[0], p[1], q[0], q[1]))
                   : ZULMRSBSPSign::Undecided();
    }
};

/// The sign of a polynomial that is linear in the differences of x[0] to x[3] and in those of x[4] to x[7]. A
/// difference has 63 bits, a sum of two products 127.
template <class Polynomial>
ZULMRSBSPSign ZULMRSBSPDifferencesByIntegers(const std::array<double, 8>& x, const Polynomial& polynomial)
{
    using namespace ZULMRSBSPShortIntegers;
    const Row<4> p = Cut<4>({x[0], x[1], x[2], x[3]});
    const Row<4> q = Cut<4>({x[4], x[5], x[6], x[7]});
    return p.m_IsExact && q.m_IsExact
               ? SignOf(polynomial(std::array<Wide, 8>{p[0], p[1], p[2], p[3], q[0], q[1], q[2], q[3]}))
               : ZULMRSBSPSign::Undecided();
}

struct ZULMRSBSPDifferenceDeterminantKernel {
    static constexpr std::size_t NbInputs = 8;
    static constexpr int K = 8;  // two differences, product, difference: 4 units
    static constexpr bool ReportsFault = true;

    template <class Number>
    static Number Value(const std::array<Number, NbInputs>& x)
    {
        return ZULMRSBSPFormulas::DifferenceDeterminant(x);
    }
    static ZULMRSBSPSign ByIntegers(const std::array<double, NbInputs>& x)
    {
        return ZULMRSBSPDifferencesByIntegers(x, Value<ZULMRSBSPShortIntegers::Wide>);
    }
};

struct ZULMRSBSPDifferenceDotProductKernel {
    static constexpr std::size_t NbInputs = 8;
    static constexpr int K = 8;  // two differences, product, sum: 4 units
    static constexpr bool ReportsFault = true;

    template <class Number>
    static Number Value(const std::array<Number, NbInputs>& x)
    {
        return ZULMRSBSPFormulas::DifferenceDotProduct(x);
    }
    static ZULMRSBSPSign ByIntegers(const std::array<double, NbInputs>& x)
    {
        return ZULMRSBSPDifferencesByIntegers(x, Value<ZULMRSBSPShortIntegers::Wide>);
    }
};

/// Inputs: u, then v.
struct ZULMRSBSPDotProductKernel {
    static constexpr std::size_t NbInputs = 6;
    static constexpr int K = 6;  // product, two sums: 3 units
    static constexpr bool ReportsFault = true;

    template <class Number>
    static Number Value(const std::array<Number, NbInputs>& x)
    {
        return ZULMRSBSPFormulas::DotProduct<Number>({x[0], x[1], x[2]}, {x[3], x[4], x[5]});
    }
    static ZULMRSBSPSign Shortcut(const std::array<int, NbInputs>& s)
    {
        return ZULMRSBSPShortcut::SignOfSum(s[0] * s[3], s[1] * s[4], s[2] * s[5]);
    }
    static ZULMRSBSPSign ByIntegers(const std::array<double, NbInputs>& x)
    {
        using namespace ZULMRSBSPShortIntegers;
        const Row<3> u = Cut<3>({x[0], x[1], x[2]});
        const Row<3> v = Cut<3>({x[3], x[4], x[5]});
        return u.m_IsExact && v.m_IsExact
                   ? SignOf(ZULMRSBSPFormulas::DotProduct<Wide>({u[0], u[1], u[2]}, {v[0], v[1], v[2]}))
                   : ZULMRSBSPSign::Undecided();
    }
};

/// Inputs: the plane's a, b, c, d, then the point's x, y, z.
struct ZULMRSBSPEquationKernel {
    static constexpr std::size_t NbInputs = 7;
    static constexpr int K = 7;  // product, two sums: 3 units
    static constexpr bool ReportsFault = true;

    template <class Number>
    static Number Value(const std::array<Number, NbInputs>& x)
    {
        return ZULMRSBSPFormulas::EquationAt<Number>({x[0], x[1], x[2], x[3]}, {x[4], x[5], x[6]});
    }
    static ZULMRSBSPSign Shortcut(const std::array<int, NbInputs>& s)
    {
        return ZULMRSBSPShortcut::SignOfSum(s[0] * s[4], s[1] * s[5], s[2] * s[6], s[3]);
    }
    static ZULMRSBSPSign ByIntegers(const std::array<double, NbInputs>& x)
    {
        const ZULMRSBSPIntegerForm plane = ZULMRSBSPIntegerForms::OfPlane({x[0], x[1], x[2], x[3]});
        const ZULMRSBSPIntegerForm point = ZULMRSBSPIntegerForms::OfCoordinates({x[4], x[5], x[6]});
        return plane.IsExact() && point.IsExact() ? ZULMRSBSPIntegerForms::SideOf(plane, point)
                                                  : ZULMRSBSPSign::Undecided();
    }
};

/// Inputs: the matrix by rows.
struct ZULMRSBSPDeterminant3x3Kernel {
    static constexpr std::size_t NbInputs = 9;
    static constexpr int MinorK = 6;    // product, difference: 2 units
    static constexpr int PartialK = 9;  // a minor, product, sum: 4 units
    static constexpr int K = 10;        // the partial sum, sum: 5 units
    static constexpr bool ReportsFault = false;

    using Filtered = ZULMRSBSPFilteredDouble;

    template <class Number>
    static auto Value(const std::array<Number, NbInputs>& x)
    {
        return ZULMRSBSPFormulas::Determinant3x3<Number>({x[0], x[1], x[2]}, {x[3], x[4], x[5]},
                                                         {x[6], x[7], x[8]});
    }
    static ZULMRSBSPSign Shortcut(const std::array<int, NbInputs>& s)
    {
        return ZULMRSBSPShortcut::SignOfSum(s[0] * s[4] * s[8], -(s[0] * s[5] * s[7]), -(s[1] * s[3] * s[8]),
                                            s[1] * s[5] * s[6], s[2] * s[3] * s[7], -(s[2] * s[4] * s[6]));
    }

    /// The full value first: it decides nearly always, without a branch on the signs of minors. The cascade
    /// decides some more.
    static ZULMRSBSPSign Filter(const std::array<double, NbInputs>& x)
    {
        const auto minors = Minors(x);
        const Filtered value = ZULMRSBSPFormulas::ExpandFirstRow(
            Filtered(x[0]), Filtered(x[1]), Filtered(x[2]), minors[0], minors[1], minors[2]);
        const ZULMRSBSPSign sign = ZULMRSBSPFilter::DecideMultiplied(value, LargestOfFirstRow(x), K);
        return sign.IsDecided() ? sign : Cascade(x);
    }

    /// Minors, then the partial sum of two terms, then the full value.
    static ZULMRSBSPSign Cascade(const std::array<double, NbInputs>& x)
    {
        using ZULMRSBSPFilter::DecideMultiplied;
        const auto minors = Minors(x);
        const double largest = LargestOfFirstRow(x);
        const ZULMRSBSPSign t1 = TermSign(x[0], minors[0]);
        const ZULMRSBSPSign t2 = TermSign(x[1], minors[1]);
        const ZULMRSBSPSign t3 = TermSign(x[2], minors[2]);
        const ZULMRSBSPSign byTerms = ZULMRSBSPShortcut::SignOfOpenSum(t1, t2, t3);
        if (byTerms.IsDecided()) {
            return byTerms;
        }
        const Filtered partial = minors[0] * Filtered(x[0]) + minors[1] * Filtered(x[1]);
        if (t1.IsDecided() && t2.IsDecided() && t3.IsDecided()) {
            const ZULMRSBSPSign byPartial =
                ZULMRSBSPShortcut::SignOfOpenSum(DecideMultiplied(partial, largest, PartialK), t3);
            if (byPartial.IsDecided()) {
                return byPartial;
            }
        }
        return DecideMultiplied(partial + minors[2] * Filtered(x[2]), largest, K);
    }

    static ZULMRSBSPSign Quietly(const std::array<double, NbInputs>& x)
    {
        using ZULMRSBSPQuietFilter::MakeRow;
        return ZULMRSBSPQuietFilter::SignOfDeterminant(MakeRow(x[0], x[1], x[2]), MakeRow(x[3], x[4], x[5]),
                                                       MakeRow(x[6], x[7], x[8]));
    }

    static ZULMRSBSPSign ByIntegers(const std::array<double, NbInputs>& x)
    {
        using namespace ZULMRSBSPShortIntegers;
        const Row<3> p = Cut<3>({x[0], x[1], x[2]});
        const Row<3> q = Cut<3>({x[3], x[4], x[5]});
        const Row<3> r = Cut<3>({x[6], x[7], x[8]});
        return p.m_IsExact && q.m_IsExact && r.m_IsExact
                   ? ZULMRSBSPFormulas::Determinant3x3(ToInputs(p.m_Values), ToInputs(q.m_Values),
                                                       ToInputs(r.m_Values))
                         .Sign()
                   : ZULMRSBSPSign::Undecided();
    }

private:
    static std::array<Filtered, 3> Minors(const std::array<double, NbInputs>& x)
    {
        return ZULMRSBSPFormulas::CrossProduct<Filtered>({Filtered(x[3]), Filtered(x[4]), Filtered(x[5])},
                                                         {Filtered(x[6]), Filtered(x[7]), Filtered(x[8])});
    }
    static ZULMRSBSPSign TermSign(double factor, const Filtered& minor)
    {
        return ZULMRSBSPSign::FromNumber(ZULMRSBSPShortcut::FactorSign(factor)) *
               ZULMRSBSPFilter::Decide(minor, MinorK);
    }
    static double LargestOfFirstRow(const std::array<double, NbInputs>& x)
    {
        return std::max(std::max(std::fabs(x[0]), std::fabs(x[1])), std::fabs(x[2]));
    }
};

/// Inputs: the triangle's points a, b, c, then the cosine s.
struct ZULMRSBSPNormalAngleKernel {
    static constexpr std::size_t NbInputs = 10;
    // Component of the normal: 4 units, square 9, sum of three 11, times s^2 13, difference 14. Nothing is
    // let through by a range test here, so the 8 units that are left suffice.
    static constexpr int K = 22;
    static constexpr bool ReportsFault = true;

    template <class Number>
    static Number Value(const std::array<Number, NbInputs>& x)
    {
        return ZULMRSBSPFormulas::NormalAngleDifference<Number>({x[0], x[1], x[2]}, {x[3], x[4], x[5]},
                                                                {x[6], x[7], x[8]}, x[9]);
    }
    static ZULMRSBSPSign Filter(const ZULMRSBSPFilteredDouble& value)
    {
        return ZULMRSBSPFilter::DecideByStatus(value.m_Value, value.m_Magnitude, K);
    }
};

/// The stages of a kernel, each on its own, and their chain.
template <class Kernel>
class ZULMRSBSPKernel
{
public:
    using Inputs = std::array<double, Kernel::NbInputs>;

    /// The sign of the kernel's polynomial at the inputs, from any floating-point environment: -1, 0, 1; 2
    /// only for input that is not finite.
    static int Sign(const Inputs& inputs)
    {
        const ZULMRSBSPSign quiet = Quietly(inputs);
        if (quiet.IsDecided()) [[likely]] {
            return quiet.ToKernelResult();
        }
        const ZULMRSBSPSign sign = ByIntegers(inputs);
        return sign.IsDecided() ? sign.ToKernelResult() : SignInStages(inputs);
    }
    [[gnu::noinline]] static int SignInStages(const Inputs& inputs)
    {
        const ZULExpFloatScope scope;
        int result = Decide(inputs).ToKernelResult();
        ZULExpProcessor::Pin(result);
        return result;
    }

    /// The same inside a ZULExpFloatScope. Clears the status.
    static ZULMRSBSPSign Decide(Inputs inputs)
    {
        const ZULMRSBSPEnvironment<ZULMRSBSPFilteredDouble> environment;
        for (double& input : inputs) {
            ZULExpProcessor::Pin(input);
        }
        using ZULMRSBSPStages::Counted;
        ZULMRSBSPSign sign = Counted(ZULMRSBSPStage::Shortcut, Shortcut(inputs));
        if (!sign.IsDecided()) {
            sign = Counted(ZULMRSBSPStage::Filter, Filter(inputs));
        }
        return sign.IsDecided() ? sign : DecideCarefully(inputs);
    }

    static ZULMRSBSPSign Shortcut(const Inputs& inputs)
    {
        if constexpr (requires(const std::array<int, Kernel::NbInputs>& s) { Kernel::Shortcut(s); }) {
            std::array<int, Kernel::NbInputs> signs;
            std::transform(inputs.begin(), inputs.end(), signs.begin(), ZULMRSBSPShortcut::FactorSign);
            return Kernel::Shortcut(signs);
        } else {
            return ZULMRSBSPSign::Undecided();
        }
    }
    /// Needs a cleared status.
    static ZULMRSBSPSign Filter(const Inputs& inputs)
    {
        if constexpr (requires { Kernel::Filter(inputs); }) {
            return Kernel::Filter(inputs);
        } else if constexpr (requires(const ZULMRSBSPFilteredDouble& value) { Kernel::Filter(value); }) {
            return Kernel::Filter(Value<ZULMRSBSPFilteredDouble>(inputs));
        } else {
            return ZULMRSBSPFilter::Decide(Value<ZULMRSBSPFilteredDouble>(inputs), Kernel::K);
        }
    }
    /// Without a floating-point scope. Undecided where the kernel has no such stage or the processor no such
    /// arithmetic.
    static ZULMRSBSPSign Quietly([[maybe_unused]] const Inputs& inputs)
    {
        if constexpr (requires { Kernel::Quietly(inputs); }) {
            return ZULExpProcessor::HasQuietArithmetic()
                       ? ZULMRSBSPStages::Counted(ZULMRSBSPStage::Filter, Kernel::Quietly(inputs))
                       : ZULMRSBSPSign::Undecided();
        } else {
            return ZULMRSBSPSign::Undecided();
        }
    }
    /// In integers of fixed length, without a floating-point instruction: exact, and cheaper than intervals.
    /// Undecided where the kernel has no such stage or the input does not fit.
    static ZULMRSBSPSign ByIntegers([[maybe_unused]] const Inputs& inputs)
    {
        if constexpr (requires { Kernel::ByIntegers(inputs); }) {
            return ZULMRSBSPStages::Counted(ZULMRSBSPStage::Exact, Kernel::ByIntegers(inputs));
        } else {
            return ZULMRSBSPSign::Undecided();
        }
    }
    static ZULMRSBSPSign Interval(const Inputs& inputs)
    {
        return ZULMRSBSPStages::RunChecked<ZULExpInterval>(
            [&inputs] { return ZULMRSBSPStages::SignOf(Value<ZULExpInterval>(inputs)); });
    }
    static ZULMRSBSPSign Exact(const Inputs& inputs)
    {
        const auto evaluate = [&inputs] {
            return ZULMRSBSPStages::SignOf(Value<ZULExpFloatRingExtensionTS>(inputs));
        };
        if constexpr (Kernel::ReportsFault) {
            return ZULMRSBSPStages::RunChecked<ZULExpFloatRingExtensionTS>(evaluate);
        } else {
            return ZULMRSBSPStages::Run<ZULExpFloatRingExtensionTS>(evaluate);
        }
    }

private:
    // Apart, so that the stages before it stay small enough to be inlined.
    [[gnu::noinline]] static ZULMRSBSPSign DecideCarefully(const Inputs& inputs)
    {
        return ZULMRSBSPStages::FirstDecided([&inputs] { return ByIntegers(inputs); },
                                             [&inputs] { return Interval(inputs); },
                                             [&inputs] { return Exact(inputs); });
    }

    template <class Number>
    static Number Value(const Inputs& inputs)
    {
        return ValueOf<Number>(inputs, std::make_index_sequence<Kernel::NbInputs>{});
    }
    template <class Number, std::size_t... Index>
    static Number ValueOf(const Inputs& inputs, std::index_sequence<Index...>)
    {
        return Kernel::template Value<Number>({Number(inputs[Index])...});
    }
};

#endif
