#ifndef NcDrillCycle_h
#define NcDrillCycle_h

#include <optional>

#include "NcMotion.h"

/// The words of one block of a drill cycle; lengths in millimetres, as programmed (not yet shifted by the
/// work offset).
struct NcDrillWords {
    /// 73, 81, 82 or 83.
    int m_code = 81;
    NcPlane m_plane = NcPlane::XY;
    /// The word of the axis across the plane, R and Q.
    std::optional<double> m_bottom;
    std::optional<double> m_retract;
    std::optional<double> m_peck;
    /// L: 0 sets the values without drilling.
    int m_repeats = 1;
    bool m_isIncremental = false;
    /// G99: from hole to hole at the height of R instead of that of the start.
    bool m_retractsToR = false;
    /// The work offset along the axis across the plane.
    double m_offset = 0.0;
    /// Where the hole is. With m_isIncremental the step from the place before is repeated m_repeats times.
    NcPosition m_target;
};

/// A series of blocks of drill cycles, from the first one to the next other motion code. Bottom, R and Q hold
/// until given anew.
///
/// For each hole: up to R if the tool is below, across, down to R, then the strokes: G81 and G82 in one go,
/// G83 in pecks of Q with a retract to R, G73 in pecks with a short retract. Then up to R (G99) or to the
/// height before the series if that is higher (G98). With G91, R counts from the height before the series and
/// the bottom from R.
class NcDrillCycle
{
public:
    /// Ends the series.
    void End() { m_isActive = false; }
    /// Throws NcFault where a value is missing or absurd.
    void Run(const NcDrillWords& iWords, NcMotion& ioMotion, int& ioHoleCount);

private:
    void Begin(const NcDrillWords& iWords, const NcMotion& iMotion);
    void TakeWords(const NcDrillWords& iWords);
    void CheckWords(const NcDrillWords& iWords) const;
    void DrillHole(const NcDrillWords& iWords, const NcPosition& iTarget, NcMotion& ioMotion) const;
    void Strokes(const NcDrillWords& iWords, NcMotion& ioMotion) const;
    void Retract(const NcDrillWords& iWords, NcMotion& ioMotion) const;

    bool m_isActive = false;
    /// The axis across the plane, and the place along it before the series.
    int m_axis = 2;
    double m_initial = 0.0;
    NcAxisState m_initialState = NcAxisState::Unknown;
    int m_initialLostOnLine = 0;
    /// Program coordinates: they follow a change of the work offset.
    std::optional<double> m_bottomWord;
    std::optional<double> m_retractWord;
    std::optional<double> m_peck;
    /// The same for the block being carried out, in stock coordinates.
    double m_bottom = 0.0;
    double m_retract = 0.0;
};

#endif
