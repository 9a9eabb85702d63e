#include "NcError.h"

#include <fmt/format.h>

namespace
{

std::string Escaped(std::string_view iText, bool iAscii)
{
    std::string text;
    for (const char c : iText) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7f || (iAscii && byte > 0x7f)) {
            text += fmt::format("\\x{:02x}", byte);
        } else {
            text += c;
        }
    }
    return text;
}

std::string Place(const std::string& iFile, int iLine)
{
    // A file name may be in any script; only control bytes could break the line.
    const std::string file = Escaped(iFile, false);
    return iLine > 0 ? fmt::format("{}:{}", file, iLine) : file;
}

}  // namespace

NcError::NcError(const std::string& iFile, int iLine, const std::string& iSubject, const std::string& iReason)
    : std::runtime_error(fmt::format("{}: error: {}: {}", Place(iFile, iLine), iSubject, iReason)),
      m_file(iFile),
      m_line(iLine),
      m_subject(iSubject),
      m_reason(iReason)
{
}

std::string NcPrintable(std::string_view iText, std::size_t iMaxLength)
{
    if (iText.size() <= iMaxLength) {
        return Escaped(iText, true);
    }
    return Escaped(iText.substr(0, iMaxLength), true) + "...";
}
