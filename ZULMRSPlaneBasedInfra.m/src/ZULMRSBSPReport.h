#ifndef ZULMRSBSPReport_h
#define ZULMRSBSPReport_h

#include <ostream>

#include "ZULKLOOutput.h"
#include "ZULKLOOutputColor.h"

/// The error, warning and information lines of the library. They always go to the diagnostic stream; no
/// switch silences them.
namespace ZULMRSBSPReport
{
/// Console colours of the diagnostic stream.
constexpr int DefaultColor = 7;
constexpr int ErrorColor = 12;
constexpr int InformationColor = 13;
constexpr int WarningColor = 14;
constexpr int Background = 0;

/// Where a message comes from, as its trailer names it. The line number belongs to the message and stays
/// what it is when the source moves.
struct Place {
    const char* m_Function;  ///< qualified name
    const char* m_Source;    ///< bare name of the source file
    int m_Line;
};

inline const char* Color(int color)
{
    return ZULKLOOutputColor::SetTextColor(color, Background);
}

/// One line "[E] <message> ( Error happened in function ... )", wholly coloured; the message is the
/// insertion of its parts, one after the other.
template <class... Parts>
void Error(const Place& place, const Parts&... message)
{
    std::ostream& out = ZULKLOOutput::GetOut();
    out << Color(ErrorColor) << "[E] ";
    (out << ... << message);
    out << " ( Error happened in function " << place.m_Function << " / Source : " << place.m_Source
        << " / Line : " << place.m_Line << ")\n";
    // The colour must not wait for the thread's next line to be put back.
    out << Color(DefaultColor) << std::flush;
}

/// One line "[w] <message> ( Warning In function ... )", of which the tag is coloured.
template <class... Parts>
void Warning(const Place& place, const Parts&... message)
{
    std::ostream& out = ZULKLOOutput::GetOut();
    out << Color(WarningColor) << "[w] " << Color(DefaultColor);
    (out << ... << message);
    out << " ( Warning In function " << place.m_Function << " / Source : " << place.m_Source
        << " / Line : " << place.m_Line << ")\n";
}

/// One line "[i] <text>", of which the tag is coloured; the line feed is added here.
template <class... Parts>
void Information(const Parts&... text)
{
    std::ostream& out = ZULKLOOutput::GetOut();
    out << Color(InformationColor) << "[i] " << Color(DefaultColor);
    (out << ... << text);
    out << '\n';
}
}  // namespace ZULMRSBSPReport

#endif
