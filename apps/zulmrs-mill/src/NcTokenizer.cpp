#include "NcTokenizer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <string>
#include <system_error>

#include <fmt/format.h>

#include "NcError.h"

namespace
{

constexpr const char* kWordRule = "a word is a letter and a number";
constexpr const char* kMacroRule = "variables, expressions and flow control are not supported";
constexpr char kDosEndOfFile = '\x1a';
constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

constexpr std::array<std::string_view, 18> kKeywords = {
    "IF",   "THEN", "ELSE", "ELSEIF", "ENDIF",  "WHILE", "ENDWHILE", "REPEAT", "ENDREPEAT",
    "GOTO", "DO",   "END",  "SUB",    "ENDSUB", "CALL",  "RETURN",   "BREAK",  "CONTINUE"};

// The locale has no say in what a program means, so <cctype> is not used.
bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

bool IsLetter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

char Upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool IsNumberPart(char c)
{
    return IsDigit(c) || c == '.' || c == '+' || c == '-';
}

bool IsMacroPart(char c)
{
    return std::string_view("#[]=<>*").find(c) != std::string_view::npos;
}

double ToNumber(std::string_view iText)
{
    const std::string_view unsignedText = iText.front() == '+' ? iText.substr(1) : iText;
    double value = 0.0;
    const bool hasTwoSigns = iText.size() > unsignedText.size() && unsignedText.front() == '-';
    const char* const end = unsignedText.data() + unsignedText.size();
    const auto [rest, status] = std::from_chars(unsignedText.data(), end, value, std::chars_format::fixed);
    if (status == std::errc::result_out_of_range) {
        // Also reported for a value too small for a double, which is as good as zero.
        const auto first = std::find_if(unsignedText.begin(), unsignedText.end(),
                                        [](char c) { return c == '.' || (c >= '1' && c <= '9'); });
        if (first == unsignedText.end() || *first == '.') {
            return 0.0;
        }
        throw NcFault{fmt::format("number '{}' too large", NcPrintable(iText)), "it does not fit a double"};
    }
    if (hasTwoSigns || status != std::errc() || rest != end) {
        throw NcFault{fmt::format("malformed number '{}'", NcPrintable(iText)),
                      "a number is a sign, digits and one decimal point"};
    }
    return value;
}

/// One line and the place reached in it.
class Scanner
{
public:
    explicit Scanner(std::string_view iLine) : m_line(iLine) {}

    bool AtEnd() const { return m_at >= m_line.size(); }
    char Peek() const { return m_line[m_at]; }
    void Skip() { ++m_at; }

    void SkipBlanks()
    {
        while (!AtEnd() && IsBlank(Peek())) {
            Skip();
        }
    }

    /// At a '('. False if the comment is not closed and so took the rest of the line.
    bool SkipComment()
    {
        if (m_partner.empty()) {
            PairParentheses();
        }
        std::size_t end = m_partner[m_at];
        if (end == std::string_view::npos) {
            end = m_line.find(')', m_at);
        }
        m_at = end == std::string_view::npos ? m_line.size() : end + 1;
        return end != std::string_view::npos;
    }

    void SkipRest() { m_at = m_line.size(); }

    /// At a letter.
    NcWord ReadWord()
    {
        const std::size_t start = m_at;
        const std::string_view letters = Run(IsLetter, m_at);
        if (letters.size() > 1) {
            RefuseKeyword(letters);
        }
        Skip();
        SkipBlanks();
        if (!AtEnd() && IsMacroPart(Peek())) {
            RefuseMacro();
        }
        const std::string_view number = Run(IsNumberPart, m_at);
        if (std::none_of(number.begin(), number.end(), IsDigit)) {
            throw NcFault{fmt::format("missing number after '{}'", m_line[start]), kWordRule};
        }
        m_at += number.size();
        return {Upper(m_line[start]), ToNumber(number), m_line.substr(start, m_at - start)};
    }

    [[noreturn]] void RefuseMacro() const
    {
        const std::size_t end = std::min(m_line.find_first_of(" \t\r(;", m_at), m_line.size());
        throw NcFault{fmt::format("macro text '{}'", NcPrintable(m_line.substr(m_at, end - m_at), 20)),
                      kMacroRule};
    }

    [[noreturn]] void RefuseCharacter() const
    {
        if (IsMacroPart(Peek())) {
            RefuseMacro();
        }
        if (IsNumberPart(Peek())) {
            throw NcFault{fmt::format("number '{}' without a letter", NcPrintable(Run(IsNumberPart, m_at))),
                          kWordRule};
        }
        if (Peek() == ')') {
            throw NcFault{"')' without '('", "a comment stands between parentheses"};
        }
        if (Peek() == '/') {
            throw NcFault{"'/' inside a block", "block delete stands at the start of a block"};
        }
        throw NcFault{fmt::format("unknown character '{}'", NcPrintable(m_line.substr(m_at, 1))),
                      "a block is made of words and comments"};
    }

private:
    /// For every '(' that has one, the ')' that pairs with it. All at once: a search from each '(' would take
    /// time quadratic in the length of a hostile line.
    void PairParentheses()
    {
        m_partner.assign(m_line.size(), std::string_view::npos);
        std::vector<std::size_t> open;
        for (std::size_t i = m_at; i < m_line.size(); ++i) {
            if (m_line[i] == '(') {
                open.push_back(i);
            } else if (m_line[i] == ')' && !open.empty()) {
                m_partner[open.back()] = i;
                open.pop_back();
            }
        }
    }

    template <class Predicate>
    std::string_view Run(Predicate iBelongs, std::size_t iFrom) const
    {
        std::size_t end = iFrom;
        while (end < m_line.size() && iBelongs(m_line[end])) {
            ++end;
        }
        return m_line.substr(iFrom, end - iFrom);
    }

    static void RefuseKeyword(std::string_view iLetters)
    {
        std::string name(iLetters);
        std::transform(name.begin(), name.end(), name.begin(), Upper);
        if (std::find(kKeywords.begin(), kKeywords.end(), name) != kKeywords.end()) {
            throw NcFault{fmt::format("macro text '{}'", NcPrintable(iLetters)), kMacroRule};
        }
    }

    std::string_view m_line;
    std::size_t m_at = 0;
    std::vector<std::size_t> m_partner;
};

/// The first line of some programs is a comment that lost its opening parenthesis. The line is not blank.
bool SkipBrokenHeader(std::string_view& ioLine)
{
    const std::size_t mark = ioLine.find_first_of("();");
    const bool isPercent = *std::find_if_not(ioLine.begin(), ioLine.end(), IsBlank) == '%';
    if (isPercent || mark == std::string_view::npos || ioLine[mark] != ')') {
        return false;
    }
    ioLine.remove_prefix(mark + 1);
    return true;
}

/// Passes over blanks and comments.
void SkipBetweenWords(Scanner& ioScanner, NcBlock& ioBlock)
{
    for (;;) {
        ioScanner.SkipBlanks();
        if (ioScanner.AtEnd()) {
            return;
        }
        if (ioScanner.Peek() == ';') {
            ioScanner.SkipRest();
        } else if (ioScanner.Peek() != '(') {
            return;
        } else if (!ioScanner.SkipComment()) {
            ioBlock.m_hasUnclosedComment = true;
        }
    }
}

/// At a '/': passes over it and the number of the switch that may follow.
void SkipDeleteMark(Scanner& ioScanner)
{
    ioScanner.Skip();
    if (!ioScanner.AtEnd() && IsDigit(ioScanner.Peek())) {
        ioScanner.Skip();
    }
}

bool OnlyLineNumber(const NcBlock& iBlock)
{
    return iBlock.m_words.empty() || (iBlock.m_words.size() == 1 && iBlock.m_words.front().m_letter == 'N');
}

void ReadWords(std::string_view iLine, bool iReadDeleted, NcBlock& ioBlock)
{
    Scanner scanner(iLine);
    for (;;) {
        SkipBetweenWords(scanner, ioBlock);
        if (scanner.AtEnd()) {
            return;
        }
        const char c = scanner.Peek();
        if (c == '%' && ioBlock.m_words.empty()) {
            ioBlock.m_isPercent = true;
            return;
        }
        if (c == '/' && !ioBlock.m_isDeleted && OnlyLineNumber(ioBlock)) {
            ioBlock.m_isDeleted = true;
            if (!iReadDeleted) {
                return;
            }
            SkipDeleteMark(scanner);
        } else if (IsLetter(c) || c == ':') {
            ioBlock.m_words.push_back(scanner.ReadWord());
        } else {
            scanner.RefuseCharacter();
        }
    }
}

}  // namespace

NcTokenizer::NcTokenizer(std::string_view iText, bool iReadDeleted)
    : m_text(iText.substr(0, iText.find(kDosEndOfFile))), m_readDeleted(iReadDeleted)
{
    if (m_text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
        m_position = kByteOrderMark.size();
    }
    if (m_text.find('\n') == std::string_view::npos) {
        m_lineEnd = '\r';
    }
}

bool NcTokenizer::NextLine(std::string_view& oLine)
{
    if (m_position >= m_text.size()) {
        return false;
    }
    const std::size_t end = std::min(m_text.find(m_lineEnd, m_position), m_text.size());
    oLine = m_text.substr(m_position, end - m_position);
    m_position = end + 1;
    ++m_line;
    return true;
}

bool NcTokenizer::NextBlock(NcBlock& oBlock)
{
    std::string_view line;
    oBlock.m_words.clear();
    oBlock.m_isPercent = oBlock.m_isDeleted = false;
    oBlock.m_hasUnclosedComment = oBlock.m_hasBrokenHeader = false;
    if (!NextLine(line)) {
        return false;
    }
    oBlock.m_line = m_line;
    if (!m_seenText && !std::all_of(line.begin(), line.end(), IsBlank)) {
        m_seenText = true;
        oBlock.m_hasBrokenHeader = SkipBrokenHeader(line);
    }
    ReadWords(line, m_readDeleted, oBlock);
    return true;
}

bool NcTokenizer::HasMoreText()
{
    NcBlock ignored;
    std::string_view line;
    while (NextLine(line)) {
        Scanner scanner(line);
        SkipBetweenWords(scanner, ignored);
        if (!scanner.AtEnd() && scanner.Peek() != '%') {
            m_position = m_text.size();
            return true;
        }
    }
    return false;
}
