#include "ZULKLOOutputColor.h"

#include <array>
#include <cstddef>

#include "ZULKLOOutput.h"

namespace
{
constexpr int NbColors = 16;
constexpr int DefaultColor = 7;
constexpr int DefaultBackground = 0;

// Room for the longest, ESC [ 97 ; 107 m, and its terminator.
using ControlString = std::array<char, 12>;
using ControlTable = std::array<std::array<ControlString, NbColors>, NbColors>;

/// The code of a console colour (bit 0 blue, bit 1 green, bit 2 red, bit 3 bright) among a terminal's, which
/// count red, green, blue upwards from base and their bright versions 60 further.
constexpr int TerminalCode(int color, int base)
{
    const int hue = ((color & 1) << 2) | (color & 2) | ((color & 4) >> 2);
    return base + hue + ((color & 8) != 0 ? 60 : 0);
}

constexpr void AppendCode(ControlString& text, std::size_t& length, int code)
{
    if (code >= 100) {
        text[length++] = static_cast<char>('0' + code / 100);
    }
    text[length++] = static_cast<char>('0' + code / 10 % 10);
    text[length++] = static_cast<char>('0' + code % 10);
}

constexpr ControlString MakeControlString(int color, int background)
{
    // The default colours are the terminal's own, not the console's grey on black.
    const int foregroundCode = color == DefaultColor ? 39 : TerminalCode(color, 30);
    const int backgroundCode = background == DefaultBackground ? 49 : TerminalCode(background, 40);
    ControlString text{'\033', '['};
    std::size_t length = 2;
    AppendCode(text, length, foregroundCode);
    text[length++] = ';';
    AppendCode(text, length, backgroundCode);
    text[length] = 'm';
    return text;
}

constexpr ControlTable MakeControlTable()
{
    ControlTable table{};
    for (int color = 0; color < NbColors; ++color) {
        for (int background = 0; background < NbColors; ++background) {
            table[static_cast<std::size_t>(color)][static_cast<std::size_t>(background)] =
                MakeControlString(color, background);
        }
    }
    return table;
}

constexpr ControlTable Controls = MakeControlTable();

constexpr bool IsColor(int color)
{
    return color >= 0 && color < NbColors;
}
}  // namespace

const char* ZULKLOOutputColor::SetTextColor(int color, int background)
{
    if (!IsColor(color) || !IsColor(background) || !ZULKLOOutput::IsTerminal()) {
        return "";
    }
    return Controls[static_cast<std::size_t>(color)][static_cast<std::size_t>(background)].data();
}
