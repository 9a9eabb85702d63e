#ifndef ZULMRSBSPFactoryReport_h
#define ZULMRSBSPFactoryReport_h

#include <cstdint>
#include <limits>
#include <ostream>

#include "ZULExpFloatStatus.h"

/// Texts that the factories share. They are inserted into the diagnostic stream.
namespace ZULMRSBSPFactoryReport
{
/// What a Tass did: "<owner>::Tass : Nb <objects> In Factory before Tass= ...", without line feed.
struct TassSummary {
    const char* m_Owner;
    const char* m_Objects;
    std::uint64_t m_Before;
    std::uint64_t m_After;

    /// Part of the objects that was dropped, in percent; not a number when there were none.
    double Reduction() const
    {
        if (m_Before == 0) {
            // The quotient 0 / 0, whose sign would otherwise depend on the processor.
            return std::numeric_limits<double>::quiet_NaN();
        }
        return (static_cast<double>(m_Before) - static_cast<double>(m_After)) * 100.0 /
               static_cast<double>(m_Before);
    }

    friend std::ostream& operator<<(std::ostream& out, const TassSummary& summary)
    {
        const ZULExpFloatScope
            scope;  // the caller's rounding has no part in what is written, nor is it changed
        return out << summary.m_Owner << "::Tass : Nb " << summary.m_Objects
                   << " In Factory before Tass= " << static_cast<std::uint32_t>(summary.m_Before)
                   << " After Tass=" << static_cast<std::uint32_t>(summary.m_After)
                   << " Reduction : " << summary.Reduction() << "%";
    }
};

/// The statistics that a factory leaves behind: several whole lines.
struct Statistics {
    const char* m_Factory;
    const char* m_Objects;
    std::uint32_t m_Required;
    std::uint32_t m_Reused;
    std::uint64_t m_Size;

    friend std::ostream& operator<<(std::ostream& out, const Statistics& statistics)
    {
        const ZULExpFloatScope scope;
        statistics.WriteBanner(out);
        out << "Nb " << statistics.m_Objects << " Required for New : " << statistics.m_Required << "\n"
            << "Nb " << statistics.m_Objects << " Reused : " << statistics.m_Reused << "\n";
        if (statistics.m_Reused != 0) {
            out << "Re-Use Percentage : " << statistics.m_Reused * 100.0 / statistics.m_Required << "%\n";
        }
        out << "Factory Size : " << static_cast<std::uint32_t>(statistics.m_Size) << "\n";
        statistics.WriteBanner(out);
        return out;
    }

private:
    void WriteBanner(std::ostream& out) const
    {
        out << "======= ~ " << m_Factory << " Stats ~ ==================\n";
    }
};
}  // namespace ZULMRSBSPFactoryReport

#endif
