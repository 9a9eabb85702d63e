// The library, by its public calls; every cell with an object factory of its own.
#include <malloc.h>

#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>

#include "Workloads.h"
#include "ZULBenchMain.h"
#include "ZULBenchStages.h"
#include "zulmrsCell.h"

namespace
{
class Maker
{
public:
    static constexpr bool IsReusable = false;  // the factory would find the points again
    static bool Handles(const ZULBench::Sequence&) { return true; }

    Maker() = default;
    Maker(const Maker&) = delete;
    Maker& operator=(const Maker&) = delete;
    ~Maker() { ZULMRSBSPPolyhedron::ReleaseObject(m_Polyhedron); }

    void Begin() { m_Cell.emplace(*m_Factory); }
    void Cut(const ZULBench::Equation& equation) { m_Cell->Cut(equation); }
    void Finish()
    {
        m_Polyhedron = m_Cell->MakePolyhedron();
        m_Cell.reset();
    }
    std::size_t NbVertices() const { return m_Cell->GetNbVertices(); }
    std::size_t NbFaces() const { return m_Cell->GetNbFaces(); }
    bool IsSound() const { return m_Cell->IsSound(); }

private:
    std::unique_ptr<ZULMRSBSPObjectFactory> m_Factory{ZULMRSCreateObjectFactory(false)};
    std::optional<ZULBench::ZulmrsCell> m_Cell;
    ZULMRSBSPPolyhedron* m_Polyhedron = nullptr;
};
}  // namespace

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    // One core: factories that end do not wake others to release their points.
    setenv("MRS_DISABLE_PPL", "1", 1);
    // As in a long-lived program, memory once had is not given back, so that no page is fetched anew.
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    mallopt(M_MMAP_THRESHOLD, std::numeric_limits<int>::max());
    ZULBench::StageObserver::Register();
    ZULBench::RegisterCells<Maker>();
}
