#include "MillShape.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <vector>

#include "MillError.h"
#include "NcError.h"

namespace
{

std::vector<std::string_view> SplitAtColons(std::string_view text)
{
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t colon = text.find(':');
        parts.push_back(text.substr(0, colon));
        if (colon == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(colon + 1);
    }
}

double ParsePart(std::string_view part, std::string_view shape, const char* what, const std::string& subject)
{
    double value = 0.0;
    if (!MillParseNumber(part, value)) {
        throw MillError(subject, fmt::format("'{}': the {} '{}' is not a number", NcPrintable(shape), what,
                                             NcPrintable(part)));
    }
    return value;
}

}  // namespace

bool MillParseNumber(std::string_view text, double& value)
{
    if (text.size() > 1 && text.front() == '+' && text[1] != '-' && text[1] != '+') {
        text.remove_prefix(1);
    }
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end && std::isfinite(value);
}

std::string MillShape::GetText() const
{
    switch (m_Kind) {
        case MillShapeKind::Ball:
            return fmt::format("ball:{}", m_Diameter);
        case MillShapeKind::Vee:
            return fmt::format("vee:{}:{}", m_Diameter, m_Angle);
        case MillShapeKind::Flat:
            break;
    }
    return fmt::format("flat:{}", m_Diameter);
}

MillShape MillParseShape(std::string_view text, const std::string& subject)
{
    const std::vector<std::string_view> parts = SplitAtColons(text);
    MillShape shape;
    if (parts[0] == "flat" && parts.size() == 2) {
        shape.m_Kind = MillShapeKind::Flat;
    } else if (parts[0] == "ball" && parts.size() == 2) {
        shape.m_Kind = MillShapeKind::Ball;
    } else if (parts[0] == "vee" && parts.size() == 3) {
        shape.m_Kind = MillShapeKind::Vee;
    } else {
        throw MillError(
            subject, fmt::format("'{}' is not a tool: flat:D, ball:D or vee:D:ANGLE are", NcPrintable(text)));
    }

    shape.m_Diameter = ParsePart(parts[1], text, "diameter", subject);
    if (!(shape.m_Diameter > 0.0)) {
        throw MillError(subject, fmt::format("'{}': a tool of no size", NcPrintable(text)));
    }
    if (shape.m_Diameter > kMillLargestDiameter) {
        throw MillError(subject, fmt::format("'{}': the diameter is more than {} mm", NcPrintable(text),
                                             kMillLargestDiameter));
    }
    if (shape.m_Kind == MillShapeKind::Vee) {
        shape.m_Angle = ParsePart(parts[2], text, "angle", subject);
        if (!(shape.m_Angle >= kMillSmallestAngle && shape.m_Angle <= kMillLargestAngle)) {
            throw MillError(subject, fmt::format("'{}': the angle is not from {} to {} degrees",
                                                 NcPrintable(text), kMillSmallestAngle, kMillLargestAngle));
        }
    }
    return shape;
}
