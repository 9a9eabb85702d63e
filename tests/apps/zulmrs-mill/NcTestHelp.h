#ifndef NcTestHelp_h
#define NcTestHelp_h

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "NcProgram.h"

/// Reads a text as program "p.nc"; a refusal fails the test.
inline NcProgram Parse(std::string_view iText, const NcOptions& iOptions = {})
{
    try {
        return ParseNcProgram(iText, "p.nc", iOptions);
    } catch (const NcError& error) {
        ADD_FAILURE() << error.what();
        return {};
    }
}

/// The line that a refused text gets, or "accepted".
inline std::string Refusal(std::string_view iText, const NcOptions& iOptions = {})
{
    try {
        ParseNcProgram(iText, "p.nc", iOptions);
        return "accepted";
    } catch (const NcError& error) {
        return error.what();
    }
}

inline std::vector<std::string> Warnings(const NcProgram& iProgram)
{
    std::vector<std::string> lines;
    for (const NcWarning& warning : iProgram.m_warnings) {
        lines.push_back(NcFormatWarning(iProgram, warning));
    }
    return lines;
}

inline void ExpectPoint(const ZULMathPoint& iPoint, double iX, double iY, double iZ, double iTolerance = 0.0)
{
    EXPECT_NEAR(iPoint.x, iX, iTolerance);
    EXPECT_NEAR(iPoint.y, iY, iTolerance);
    EXPECT_NEAR(iPoint.z, iZ, iTolerance);
}

#endif
