#ifndef ZULTestBlockingPlane_h
#define ZULTestBlockingPlane_h

#include <array>
#include <atomic>
#include <functional>
#include <future>
#include <stdexcept>
#include <utility>

#include "ZULMRSBSPPlane.h"
#include "ZULTestPlaneStub.h"

namespace ZULTest
{
/// A plane that stops the thread that makes a point of it, so that others can come meanwhile. The point is
/// made when the test says so, and after an action of the test on the making thread.
class BlockingPlane : public PlaneStubWithDoubles
{
public:
    explicit BlockingPlane(const std::array<double, 4>& equation) : PlaneStubWithDoubles(equation) {}

    bool IsCanonical(int& axis) const override
    {
        axis = -1;
        if (m_NbMakings.fetch_add(1) == 0) {
            m_Entered.set_value();
            m_GoOn.get_future().wait();
            if (m_Action) {
                m_Action();
            }
        }
        return false;
    }

    void AwaitMaker() { m_Entered.get_future().wait(); }
    void GoOn() { m_GoOn.set_value(); }
    /// How many times a point has been made of this plane.
    int GetNbMakings() const { return m_NbMakings.load(); }

    std::function<void()> m_Action;

private:
    mutable std::promise<void> m_Entered;
    mutable std::promise<void> m_GoOn;
    mutable std::atomic<int> m_NbMakings{0};
};
}  // namespace ZULTest

#endif
