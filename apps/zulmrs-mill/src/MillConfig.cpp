#include "MillConfig.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <string_view>

#include "MillError.h"
#include "MillLattice.h"
#include "NcError.h"

namespace
{

constexpr const char* kStock = "--stock";
constexpr const char* kTool = "--tool";
constexpr int kHighestToolNumber = 99'999'999;

double ParseStockNumber(std::string_view text)
{
    double value = 0.0;
    if (!MillParseNumber(text, value)) {
        throw MillError(kStock, fmt::format("'{}' is not a number", NcPrintable(text)));
    }
    std::int64_t nanometres = 0;
    if (!MillSnap(value, nanometres)) {
        throw MillError(kStock, fmt::format("{} is too far out", NcPrintable(text)));
    }
    return value;
}

std::array<double, 6> ParseBox(std::string_view text)
{
    std::array<double, 6> box{};
    std::size_t count = 0;
    for (std::string_view rest = text;; ++count) {
        const std::size_t comma = rest.find(',');
        if (count < box.size()) {
            box[count] = ParseStockNumber(rest.substr(0, comma));
        }
        if (comma == std::string_view::npos) {
            break;
        }
        rest.remove_prefix(comma + 1);
    }
    if (count + 1 != box.size()) {
        throw MillError(kStock, fmt::format("'{}' has {} numbers, not the six of X0,Y0,Z0,X1,Y1,Z1",
                                            NcPrintable(text), count + 1));
    }
    return box;
}

MillStockChoice ParseAuto(std::string_view margin)
{
    MillStockChoice stock;
    stock.m_Margin = ParseStockNumber(margin);
    if (stock.m_Margin < 0.0) {
        throw MillError(kStock, fmt::format("the margin {} is negative", NcPrintable(margin)));
    }
    return stock;
}

int ParseToolNumber(std::string_view text)
{
    int number = -1;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number < 0 || number > kHighestToolNumber) {
        throw MillError(kTool, fmt::format("'{}' is not a tool number", NcPrintable(text)));
    }
    return number;
}

}  // namespace

MillStockChoice MillParseStock(const std::string& text)
{
    constexpr std::string_view kAuto = "auto:";
    if (text.starts_with(kAuto)) {
        return ParseAuto(std::string_view(text).substr(kAuto.size()));
    }

    const std::array<double, 6> box = ParseBox(text);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        // Equal after rounding to nanometres is a box of no size too.
        std::int64_t low = 0;
        std::int64_t high = 0;
        MillSnap(box[axis], low);
        MillSnap(box[axis + 3], high);
        if (low >= high) {
            throw MillError(kStock, fmt::format("'{}': {}0 is not below {}1", NcPrintable(text), "XYZ"[axis],
                                                "XYZ"[axis]));
        }
    }
    MillStockChoice stock;
    stock.m_IsAuto = false;
    stock.m_Min = {box[0], box[1], box[2]};
    stock.m_Max = {box[3], box[4], box[5]};
    return stock;
}

const MillShape* MillToolTable::Find(int number) const
{
    const auto found = m_Numbered.find(number);
    if (found != m_Numbered.end()) {
        return &found->second;
    }
    return m_Default ? &*m_Default : nullptr;
}

void MillToolTable::Add(const std::string& text)
{
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) {
        if (m_Default) {
            throw MillError(kTool,
                            fmt::format("'{}': a shape for all tools was given already", NcPrintable(text)));
        }
        m_Default = MillParseShape(text, kTool);
        return;
    }
    const int number = ParseToolNumber(std::string_view(text).substr(0, equals));
    const MillShape shape = MillParseShape(std::string_view(text).substr(equals + 1), kTool);
    if (!m_Numbered.emplace(number, shape).second) {
        throw MillError(kTool, fmt::format("'{}': tool {} has a shape already", NcPrintable(text), number));
    }
}
