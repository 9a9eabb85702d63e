#include "MillError.h"

#include <fmt/format.h>

MillError::MillError(std::string_view subject, std::string_view reason)
    : std::runtime_error(MillOneLine(fmt::format("{}: {}", subject, reason)))
{
}

std::string MillOneLine(std::string_view text)
{
    std::string line;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7f) {
            line += fmt::format("\\x{:02x}", byte);
        } else {
            line += c;
        }
    }
    return line;
}
