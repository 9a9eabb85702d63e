#ifndef NcProgram_h
#define NcProgram_h

#include <string>
#include <string_view>
#include <vector>

#include "NcError.h"
#include "NcMove.h"

enum class NcUnits { Millimetres, Inches };

struct NcOptions {
    /// For coordinates that come before any G20 or G21.
    NcUnits m_defaultUnits = NcUnits::Millimetres;
    /// Whether blocks that start with '/' are carried out; a control passes over them when its switch is on.
    bool m_runDeletedBlocks = false;
    /// Whether reading goes on after M2, M30 or M99, for files that hold several programs one after the
    /// other. The modal state is kept. The closing '%' ends the text even so.
    bool m_readJoinedPrograms = false;
};

/// Something that is worth knowing but no obstacle.
struct NcWarning {
    /// 1-based; 0 for the file as a whole.
    int m_line = 0;
    std::string m_text;
};

/// An RS274/ISO program as the motions it makes. A plain value.
///
/// All places are stock coordinates in millimetres: program coordinates plus the work offset in force (G54 to
/// G59, zero until a G10 L2 sets them), as if stock and machine had one origin. Tool length and radius
/// compensation are not applied: the programmed path is that of the tool tip.
///
/// What is not known is not swept. A program starts at a place that it does not tell: an axis without a word
/// yet is taken to be at zero, and a move in machine coordinates (G53, G28, G30) leaves the axes it moves at
/// no known place until they are programmed again. A rapid move that starts at such a place is listed without
/// its way: it starts where it ends, and m_mayCut tells whether that end is known on every axis. A cutting
/// move takes an axis without a word yet as zero, and is refused if it starts at a lost place.
struct NcProgram {
    std::string m_file;
    std::vector<NcMove> m_moves;
    std::vector<NcWarning> m_warnings;
    /// Whether G20 or G21 was met before the end.
    bool m_statesUnits = false;
    /// Holes made by drill cycles.
    int m_holeCount = 0;

    /// The box of the ways of the tool tip while cutting: lines and arcs, with the bulge of the arcs.
    NcExtents CuttingExtents() const;
    /// The box of all motion to and from places that the program gives, rapid moves included.
    NcExtents MotionExtents() const;
    /// The numbers of the tools that make lines and arcs, ascending.
    std::vector<int> CuttingTools() const;
};

/// "FILE:LINE: warning: TEXT".
std::string NcFormatWarning(const NcProgram& iProgram, const NcWarning& iWarning);

/// Reads a program from its text; iFile is the name for messages. Throws NcError at the first mistake. Never
/// fails otherwise, whatever the bytes. Safe to call from several threads.
NcProgram ParseNcProgram(std::string_view iText, const std::string& iFile, const NcOptions& iOptions = {});

/// Reads a program from a file. A file that cannot be read gets an NcError of line 0.
NcProgram ReadNcProgram(const std::string& iFile, const NcOptions& iOptions = {});

#endif
