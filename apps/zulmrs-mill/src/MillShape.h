#ifndef MillShape_h
#define MillShape_h

#include <string>
#include <string_view>

enum class MillShapeKind { Flat, Ball, Vee };

/// A cutter as it is ordered from a catalogue: "flat:D", "ball:D" or "vee:D:ANGLE".
struct MillShape {
    MillShapeKind m_Kind = MillShapeKind::Flat;
    /// Diameter in millimetres; of a V tool the largest.
    double m_Diameter = 0.0;
    /// Of a V tool: the full angle at the tip, in degrees.
    double m_Angle = 0.0;

    /// The text that gives this shape.
    std::string GetText() const;
};

/// Largest diameter of a tool: one metre.
constexpr double kMillLargestDiameter = 1000.0;
/// Sharpest and bluntest tip of a V tool, in degrees.
constexpr double kMillSmallestAngle = 5.0;
constexpr double kMillLargestAngle = 175.0;

/// Reads a shape. Throws MillError with the given subject for anything else.
MillShape MillParseShape(std::string_view text, const std::string& subject);

/// Reads a finite decimal number that makes up the whole text; false otherwise. Does not depend on the
/// locale.
bool MillParseNumber(std::string_view text, double& value);

#endif
