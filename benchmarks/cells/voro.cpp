// voro++: the fastest cell cutter known, in doubles with a tolerance. The limit of speed.
#include <voro++/voro++.hh>

#include "Workloads.h"
#include "ZULBenchMain.h"

namespace
{
class Maker
{
public:
    static constexpr bool IsReusable = true;
    static bool Handles(const ZULBench::Sequence&) { return true; }

    void Begin()
    {
        m_Cell.init(-1, 1, -1, 1, -1, 1);
        m_IsEmpty = false;
    }
    void Cut(const ZULBench::Equation& equation)
    {
        // Its plane is a x + b y + c z = rsq / 2.
        m_IsEmpty = m_IsEmpty || !m_Cell.plane(equation[0], equation[1], equation[2], -2 * equation[3]);
    }
    void Finish() {}
    std::size_t NbVertices() const { return m_IsEmpty ? 0 : static_cast<std::size_t>(m_Cell.p); }
    std::size_t NbFaces() { return m_IsEmpty ? 0 : static_cast<std::size_t>(m_Cell.number_of_faces()); }
    static bool IsSound() { return true; }

private:
    voro::voronoicell m_Cell;
    bool m_IsEmpty = false;
};
}  // namespace

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    ZULBench::RegisterCells<Maker>();
}
