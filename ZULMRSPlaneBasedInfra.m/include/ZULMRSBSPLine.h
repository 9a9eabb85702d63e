#ifndef ZULMRSBSPLine_h
#define ZULMRSBSPLine_h

#include "ZULMRSBSPPlane.h"

/// A line: where two planes meet. A plain value that refers to the planes without owning them; they must
/// outlive it. Whether they are parallel is not checked.
class ZULMRSBSPLine
{
public:
    ZULMRSBSPLine(const ZULMRSBSPPlane& p1, const ZULMRSBSPPlane& p2) : m_P1(&p1), m_P2(&p2) {}

    const ZULMRSBSPPlane& GetP1() const { return *m_P1; }
    const ZULMRSBSPPlane& GetP2() const { return *m_P2; }

private:
    const ZULMRSBSPPlane* m_P1;
    const ZULMRSBSPPlane* m_P2;
};

#endif
