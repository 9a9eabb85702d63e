#include "NcBlockWords.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string_view>

#include <fmt/format.h>

#include "NcError.h"

namespace
{

struct GCode {
    int m_tenths;
    NcGroup m_group;
};

constexpr GCode kKnown[] = {
    {0, NcGroup::Motion},         {10, NcGroup::Motion},        {20, NcGroup::Motion},
    {30, NcGroup::Motion},        {730, NcGroup::Motion},       {800, NcGroup::Motion},
    {810, NcGroup::Motion},       {820, NcGroup::Motion},       {830, NcGroup::Motion},
    {170, NcGroup::Plane},        {180, NcGroup::Plane},        {190, NcGroup::Plane},
    {200, NcGroup::Units},        {210, NcGroup::Units},        {900, NcGroup::Distance},
    {910, NcGroup::Distance},     {540, NcGroup::WorkOffset},   {550, NcGroup::WorkOffset},
    {560, NcGroup::WorkOffset},   {570, NcGroup::WorkOffset},   {580, NcGroup::WorkOffset},
    {590, NcGroup::WorkOffset},   {980, NcGroup::Retract},      {990, NcGroup::Retract},
    {400, NcGroup::Compensation}, {410, NcGroup::Compensation}, {420, NcGroup::Compensation},
    {40, NcGroup::Special},       {100, NcGroup::Special},      {280, NcGroup::Special},
    {300, NcGroup::Special},      {530, NcGroup::Special},
};

// Exact stop, tool length, feed and spindle modes, and codes that switch off what is never on here.
constexpr int kIgnored[] = {90,  150, 430, 440, 490, 500, 610, 611, 640, 670,
                            690, 911, 921, 922, 923, 930, 940, 950, 960, 970};

struct RefusedCode {
    int m_tenths;
    const char* m_reason;
};

constexpr const char* kSpecialCycle = "of the canned cycles only G73, G81, G82 and G83 are supported";

constexpr RefusedCode kRefused[] = {
    {160, "polar coordinates are not supported"},
    {431, "an offset written in the program is not supported"},
    {510, "scaling and mirroring are not supported"},
    {520, "local coordinate systems are not supported"},
    {591, "only the work offsets G54 to G59 are supported"},
    {592, "only the work offsets G54 to G59 are supported"},
    {593, "only the work offsets G54 to G59 are supported"},
    {541, "only the work offsets G54 to G59 are supported"},
    {650, "macro calls are not supported"},
    {660, "macro calls are not supported"},
    {680, "rotated coordinates are not supported"},
    {740, kSpecialCycle},
    {760, kSpecialCycle},
    {840, kSpecialCycle},
    {850, kSpecialCycle},
    {860, kSpecialCycle},
    {870, kSpecialCycle},
    {880, kSpecialCycle},
    {890, kSpecialCycle},
    {901, "arc centres are read as increments from the start point (G91.1) only"},
    {920, "a shift of the coordinates is not supported; use a work offset (G54 to G59, G10 L2)"},
};

constexpr std::string_view kOtherLetters = "DFHIJKLNOPQRSTXYZ:";
constexpr std::string_view kOtherAxes = "ABCUVW";

/// The code in tenths, or kNone if it is no code of at most one decimal.
int Tenths(double iValue)
{
    const double tenths = std::round(iValue * 10.0);
    if (!(tenths >= 0.0 && tenths <= 9999.0) || std::fabs(iValue * 10.0 - tenths) > 1e-6) {
        return NcBlockWords::kNone;
    }
    return static_cast<int>(tenths);
}

[[noreturn]] void RefuseG(const NcWord& iWord, int iTenths)
{
    const auto* const found = std::find_if(std::begin(kRefused), std::end(kRefused),
                                           [&](const RefusedCode& c) { return c.m_tenths == iTenths; });
    if (found != std::end(kRefused)) {
        throw NcFault{fmt::format("unsupported code '{}'", NcPrintable(iWord.m_text)), found->m_reason};
    }
    throw NcFault{fmt::format("unknown code '{}'", NcPrintable(iWord.m_text)), "no such G code is supported"};
}

}  // namespace

NcBlockWords::NcBlockWords(const NcBlock& iBlock)
{
    m_codes.fill(kNone);
    for (const NcWord& word : iBlock.m_words) {
        if (word.m_letter == 'G') {
            AddG(word);
        } else if (word.m_letter == 'M') {
            AddM(word);
        } else {
            AddOther(word);
        }
    }
}

void NcBlockWords::AddG(const NcWord& iWord)
{
    m_hasAction = true;
    const int tenths = Tenths(iWord.m_value);
    if (std::find(std::begin(kIgnored), std::end(kIgnored), tenths) != std::end(kIgnored)) {
        return;
    }
    const auto* const known = std::find_if(std::begin(kKnown), std::end(kKnown),
                                           [&](const GCode& c) { return c.m_tenths == tenths; });
    if (known == std::end(kKnown)) {
        RefuseG(iWord, tenths);
    }
    int& code = m_codes[static_cast<std::size_t>(known->m_group)];
    constexpr int kCancelCycle = 800;
    if (code != kNone && code != tenths && code != kCancelCycle && tenths != kCancelCycle) {
        throw NcFault{fmt::format("'{}' and '{}' in one block", CodeName(code), CodeName(tenths)),
                      "the two codes exclude each other"};
    }
    if (code == kNone || code == kCancelCycle) {
        code = tenths;
    }
}

void NcBlockWords::AddM(const NcWord& iWord)
{
    m_hasAction = true;
    if (!(iWord.m_value >= 0.0 && iWord.m_value <= 99999.0) || iWord.m_value != std::floor(iWord.m_value)) {
        throw NcFault{fmt::format("unknown code '{}'", NcPrintable(iWord.m_text)),
                      "an M code is a whole number from 0 to 99999"};
    }
    const int code = static_cast<int>(iWord.m_value);
    if (code >= 96 && code <= 98) {
        throw NcFault{fmt::format("unsupported code '{}'", NcPrintable(iWord.m_text)),
                      "subprogram calls are not supported"};
    }
    m_mCodes.push_back(code);
}

void NcBlockWords::AddOther(const NcWord& iWord)
{
    const char letter = iWord.m_letter;
    if (kOtherAxes.find(letter) != std::string_view::npos) {
        throw NcFault{fmt::format("axis word '{}'", NcPrintable(iWord.m_text)),
                      "only the axes X, Y and Z are supported"};
    }
    if (kOtherLetters.find(letter) == std::string_view::npos) {
        throw NcFault{fmt::format("unknown word '{}'", NcPrintable(iWord.m_text)),
                      "no such address letter is supported"};
    }
    if (letter == ':' || letter == 'N' || letter == 'O') {
        return;
    }
    m_hasAction = true;
    const std::size_t slot = Slot(letter);
    if (m_has[slot]) {
        throw NcFault{fmt::format("second '{}' in one block ('{}')", letter, NcPrintable(iWord.m_text)),
                      "a word can be given only once in a block"};
    }
    m_has[slot] = true;
    m_values[slot] = iWord.m_value;
    m_texts[slot] = iWord.m_text;
}

bool NcBlockWords::HasM(int iCode) const
{
    return std::find(m_mCodes.begin(), m_mCodes.end(), iCode) != m_mCodes.end();
}

int NcBlockWords::Whole(char iLetter, int iLowest, int iHighest) const
{
    const double value = Value(iLetter);
    if (!(value >= iLowest && value <= iHighest) || value != std::floor(value)) {
        throw NcFault{fmt::format("bad number in '{}'", Text(iLetter)),
                      fmt::format("{} must be a whole number from {} to {}", iLetter, iLowest, iHighest)};
    }
    return static_cast<int>(value);
}

std::string NcBlockWords::Text(char iLetter) const
{
    return NcPrintable(m_texts[Slot(iLetter)]);
}

std::string NcBlockWords::CodeName(int iTenths)
{
    if (iTenths % 10 == 0) {
        return fmt::format("G{}", iTenths / 10);
    }
    return fmt::format("G{}.{}", iTenths / 10, iTenths % 10);
}
