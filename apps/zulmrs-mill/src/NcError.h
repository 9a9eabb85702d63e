#ifndef NcError_h
#define NcError_h

#include <stdexcept>
#include <string>
#include <string_view>

/// A mistake found in the text of one block, before it is known which file and line the block comes from.
/// Thrown by the helpers of the reader and turned into an NcError in one place.
struct NcFault {
    std::string m_subject;
    std::string m_reason;
};

/// A program that cannot be read. what() is one line, "FILE:LINE: error: WHAT: WHY" (without ":LINE" where no
/// line is to blame, that is line 0); bytes that a terminal could take amiss are written as \xNN.
class NcError : public std::runtime_error
{
public:
    NcError(const std::string& iFile, int iLine, const std::string& iSubject, const std::string& iReason);

    const std::string& File() const { return m_file; }
    /// 1-based; 0 where the file as a whole is to blame.
    int Line() const { return m_line; }
    /// What was met, for example "missing number after 'X'".
    const std::string& Subject() const { return m_subject; }
    /// Why that stops the reader.
    const std::string& Reason() const { return m_reason; }

private:
    std::string m_file;
    int m_line;
    std::string m_subject;
    std::string m_reason;
};

/// The text with every byte that is not printable ASCII written as \xNN, cut to a length fit for one line.
std::string NcPrintable(std::string_view iText, std::size_t iMaxLength = 40);

#endif
