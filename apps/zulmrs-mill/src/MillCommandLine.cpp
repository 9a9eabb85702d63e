#include "MillCommandLine.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <string_view>
#include <vector>

#include "MillError.h"
#include "MillMeshWriter.h"

namespace
{

constexpr const char* kFooter = R"(
Shapes: flat:D (end mill), ball:D (ball-nose end mill) and vee:D:ANGLE (V tool; D is its largest diameter,
ANGLE the full angle at the tip), in millimetres and degrees. The programmed place is that of the tip; tool
length and radius compensation are not applied. The shank is as thick as the tool.

Stock auto:MARGIN lies MARGIN millimetres round everything that a cutting tool reaches and MARGIN below the
lowest cut; its top is Z0, or the highest cutting move of a program that never cuts below zero.

Exit status: 0 done; 2 something in the input must be put right; 1 anything else.)";

/// The arguments as texts.
struct Arguments {
    std::string m_Program;
    std::string m_Stock = "auto:2";
    std::vector<std::string> m_Tools;
    std::string m_Sides = "16";
    std::string m_Flat = "circumscribed";
    std::string m_Units = "mm";
    std::string m_Chord = "0.01";
    std::optional<std::string> m_Threads;
    std::string m_Output;
    std::string m_Report;
    bool m_RunsDeletedBlocks = false;
    bool m_ReadsJoinedPrograms = false;
    bool m_IsVerbose = false;
};

void AddOptions(CLI::App& app, Arguments& arguments)
{
    const auto add = [&app](const char* name, auto& value, const char* type, const char* help) {
        return app.add_option(name, value, help)->type_name(type)->allow_extra_args(false);
    };
    add("PROGRAM", arguments.m_Program, "FILE", "the NC program (RS274/ISO)");
    add("--stock", arguments.m_Stock, "BOX", "X0,Y0,Z0,X1,Y1,Z1 in mm, or auto:MARGIN (default auto:2)");
    add("--tool", arguments.m_Tools, "[N=]SHAPE", "shape of tool N, or of all others (repeatable)");
    add("--sides", arguments.m_Sides, "N", "sides of a round tool, from 3 to 256 (default 16)");
    add("--flat", arguments.m_Flat, "KIND",
        "flat tools: circumscribed (cuts its full width; default) or inscribed (cuts nothing too much)");
    add("--units", arguments.m_Units, "UNIT", "mm or inch, of a program that states none (default mm)");
    add("--chord", arguments.m_Chord, "TOL", "how far chords may leave an arc, in mm (default 0.01)");
    add("--threads", arguments.m_Threads, "N",
        "threads, from 1 to 256 (default: one a processor); changes nothing but the time");
    add("-o,--output", arguments.m_Output, "FILE", "the part: .stl (binary), .obj or .ply");
    add("--report", arguments.m_Report, "FILE", "a report as JSON");
    app.add_flag("--run-deleted", arguments.m_RunsDeletedBlocks, "carry out blocks that start with '/'");
    app.add_flag("--joined", arguments.m_ReadsJoinedPrograms, "read on after M2 or M30");
    app.add_flag("--verbose", arguments.m_IsVerbose, "show the diagnostics of the geometry library");
}

double ParseChord(const std::string& text)
{
    double value = 0.0;
    if (!MillParseNumber(text, value)) {
        throw MillError("--chord", fmt::format("'{}' is not a number", NcPrintable(text)));
    }
    if (!(value >= kMillSmallestChordTolerance && value <= kMillLargestChordTolerance)) {
        throw MillError("--chord", fmt::format("{} is not from {} to {}", NcPrintable(text),
                                               kMillSmallestChordTolerance, kMillLargestChordTolerance));
    }
    return value;
}

int ParseWholeNumber(const char* option, const std::string& text, int least, int most)
{
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) {
        throw MillError(option, fmt::format("'{}' is not a whole number", NcPrintable(text)));
    }
    if (value < least || value > most) {
        throw MillError(option, fmt::format("{} is not from {} to {}", value, least, most));
    }
    return value;
}

/// True for the first word, false for the second.
bool ParseChoice(const char* option, const std::string& text, std::string_view first, std::string_view second)
{
    if (text != first && text != second) {
        throw MillError(option, fmt::format("'{}' is neither {} nor {}", NcPrintable(text), first, second));
    }
    return text == first;
}

MillConfig ToConfig(const Arguments& arguments)
{
    if (arguments.m_Program.empty()) {
        throw MillError("PROGRAM", "missing; see --help");
    }
    if (arguments.m_Output.empty()) {
        throw MillError("-o", "missing: the file to write; see --help");
    }
    MillConfig config;
    config.m_Program = arguments.m_Program;
    config.m_Stock = MillParseStock(arguments.m_Stock);
    for (const std::string& tool : arguments.m_Tools) {
        config.m_Tools.Add(tool);
    }
    config.m_Sides = ParseWholeNumber("--sides", arguments.m_Sides, kMillFewestSides, kMillMostSides);
    config.m_FlatKind = ParseChoice("--flat", arguments.m_Flat, "circumscribed", "inscribed")
                            ? MillSidesKind::Circumscribed
                            : MillSidesKind::Inscribed;
    config.m_Reading.m_defaultUnits =
        ParseChoice("--units", arguments.m_Units, "mm", "inch") ? NcUnits::Millimetres : NcUnits::Inches;
    config.m_Reading.m_runDeletedBlocks = arguments.m_RunsDeletedBlocks;
    config.m_Reading.m_readJoinedPrograms = arguments.m_ReadsJoinedPrograms;
    config.m_ChordTolerance = ParseChord(arguments.m_Chord);
    if (arguments.m_Threads) {
        config.m_Threads = ParseWholeNumber("--threads", *arguments.m_Threads, 1, kMillMostThreads);
    }
    config.m_Output = arguments.m_Output;
    MillMeshFormatOf(config.m_Output);
    config.m_Report = arguments.m_Report;
    config.m_IsVerbose = arguments.m_IsVerbose;
    return config;
}

/// The parser's own words for a mistake start with the option's name; other mistakes get one as subject here.
MillError ToMillError(const std::string& message)
{
    const std::size_t colon = message.find(": ");
    if (colon != std::string::npos && message.starts_with('-')) {
        return {std::string_view(message).substr(0, colon), std::string_view(message).substr(colon + 2)};
    }
    return {"arguments", message};
}

}  // namespace

MillCommandLine MillParseCommandLine(int argc, const char* const* argv)
{
    CLI::App app("Mills an NC program exactly and writes the part that is left of the stock.", "zulmrs-mill");
    app.footer(kFooter);
    app.set_version_flag("--version", "zulmrs-mill " ZUL_MILL_VERSION);
    app.allow_extras();
    Arguments arguments;
    AddOptions(app, arguments);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return {std::nullopt, app.help()};
    } catch (const CLI::CallForVersion& version) {
        return {std::nullopt, std::string(version.what()) + "\n"};
    } catch (const CLI::ParseError& error) {
        throw ToMillError(error.what());
    }
    for (const std::string& extra : app.remaining()) {
        throw MillError(NcPrintable(extra),
                        extra.starts_with('-') ? "unknown option" : "unexpected argument");
    }
    return {ToConfig(arguments), ""};
}
