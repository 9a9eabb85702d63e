#ifndef MillError_h
#define MillError_h

#include <stdexcept>
#include <string>
#include <string_view>

/// The exit status of a run that the user must put right.
constexpr int kMillBadInput = 2;

/// Something the user must put right. what() is one line, "SUBJECT: REASON", where the subject is an option
/// ("--stock") or a file ("part.stl"); control bytes are written as \xNN. Mistakes in the program are
/// NcErrors.
class MillError : public std::runtime_error
{
public:
    MillError(std::string_view subject, std::string_view reason);
};

/// The text with every control byte written as \xNN, so that it stays on one line.
std::string MillOneLine(std::string_view text);

#endif
