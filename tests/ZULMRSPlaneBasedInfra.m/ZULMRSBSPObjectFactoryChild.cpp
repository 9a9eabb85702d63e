// One life of an object factory, from creation to the library's unloading. An argument "set" or "unset"
// changes MRS_DISABLE_PPL after its first use.
#include <tbb/task_arena.h>

#include <cstdlib>
#include <memory>
#include <string_view>

#include "ZULKLOOutput.h"
#include "ZULMRSBSPObjectFactory.h"
#include "ZULTestPlaneStub.h"

namespace
{
/// Tells whether it was destroyed by a task.
class WitnessPlane : public ZULTest::PlaneStubWithDoubles
{
public:
    explicit WitnessPlane(bool& byTask) : PlaneStubWithDoubles({1.0, 2.0, 3.0, 4.0}), m_ByTask(byTask) {}
    ~WitnessPlane() override
    {
        m_ByTask = tbb::this_task_arena::current_thread_index() != tbb::task_arena::not_initialized;
    }

private:
    bool& m_ByTask;
};

ZULMRSBSPPlane* CreatePlane(ZULMRSBSPObjectFactory& factory, const std::array<double, 4>& equation)
{
    bool isOpposite = false;
    return factory.CreatePlane(equation, isOpposite,
                               ZULMRSBSPCreatePlane_AcceptOpposite | ZULMRSBSPCreatePlane_Quantize);
}

void ChangeVariable(std::string_view change)
{
    if (change == "set") {
        setenv("MRS_DISABLE_PPL", "1", 1);
    } else if (change == "unset") {
        unsetenv("MRS_DISABLE_PPL");
    }
}
}  // namespace

int main(int argc, char** argv)
{
    bool isByTask = false;
    std::unique_ptr<ZULMRSBSPObjectFactory> factory(ZULMRSCreateObjectFactory(false));
    ZULMRSBSPPlane* const x = CreatePlane(*factory, {1.0, 0.0, 0.0, -1.0});
    ZULMRSBSPPlane* const y = CreatePlane(*factory, {0.0, 1.0, 0.0, -2.0});
    ZULMRSBSPPlane* const z = CreatePlane(*factory, {0.0, 0.0, 1.0, -3.0});
    CreatePlane(*factory, {0.0, 0.0, -1.0, 3.0})->Release();
    CreatePlane(*factory, {0.0, 0.6, 0.8, 0.0})->Release();
    ZULMRSBSPPlane* const witness = new WitnessPlane(isByTask);

    bool isValid = false;
    ZULMRSBSPPoint* const corner = factory->CreatePoint(x, y, z, isValid);
    corner->Release();
    ZULMRSBSPPoint* const kept = factory->CreatePoint(x, y, witness, isValid);
    factory->CreatePoint(x, y, witness, isValid);
    factory->CreatePoint(x, z, y, isValid)->Release();
    ZULMRSBSPPoint* const cut = factory->CreatePointOnEdge({x, y, z}, corner, kept, z);
    factory->CreatePointOnEdge({x, y, z}, corner, kept, y)->Release();
    factory->Tass();
    ChangeVariable(argc > 1 ? argv[1] : "");

    // What is left is the factory's, to be released when it goes.
    cut->Release();
    kept->Release();
    kept->Release();
    witness->Release();
    for (ZULMRSBSPPlane* plane : {x, y, z}) {
        plane->Release();
    }
    factory.reset();
    ZULKLOOutput::GetOut() << (isByTask ? "released by tasks\n" : "released by the caller\n");
    return 0;
}
