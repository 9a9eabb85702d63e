#ifndef MillConfig_h
#define MillConfig_h

#include <array>
#include <map>
#include <optional>
#include <string>

#include "MillShape.h"
#include "MillToolProfile.h"
#include "NcProgram.h"

/// Where the stock comes from.
struct MillStockChoice {
    /// Taken from the program, with the margin in millimetres; else the box.
    bool m_IsAuto = true;
    double m_Margin = 2.0;
    /// Lowest and highest corner, millimetres.
    ZULMathPoint m_Min;
    ZULMathPoint m_Max;
};

/// Reads "X0,Y0,Z0,X1,Y1,Z1" or "auto:MARGIN". Throws MillError.
MillStockChoice MillParseStock(const std::string& text);

/// The shapes of the tools.
struct MillToolTable {
    /// For every tool number without a shape of its own.
    std::optional<MillShape> m_Default;
    std::map<int, MillShape> m_Numbered;

    /// Null when the tool has no shape.
    const MillShape* Find(int number) const;
    /// Adds "SHAPE" or "N=SHAPE". Throws MillError, also for a second shape of one tool.
    void Add(const std::string& text);
};

/// What one run is to do. Lengths in millimetres.
struct MillConfig {
    std::string m_Program;
    NcOptions m_Reading;
    MillStockChoice m_Stock;
    MillToolTable m_Tools;
    int m_Sides = 16;
    MillSidesKind m_FlatKind = MillSidesKind::Circumscribed;
    /// How far the chords may leave an arc.
    double m_ChordTolerance = 0.01;
    /// Empty: not written.
    std::string m_Output;
    std::string m_Report;
    /// Threads to cut with; 0: one a processor.
    int m_Threads = 0;
    /// Diagnostics of the library are shown.
    bool m_IsVerbose = false;
};

/// Cut with when the user names no tool at all.
constexpr MillShape kMillAssumedTool{MillShapeKind::Flat, 6.0, 0.0};
constexpr int kMillMostThreads = 256;
constexpr double kMillSmallestChordTolerance = 1e-5;
constexpr double kMillLargestChordTolerance = 100.0;

#endif
