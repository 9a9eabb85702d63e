#ifndef ZULTestSupport_h
#define ZULTestSupport_h

#include <cstddef>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "ZULExpFloatStatus.h"
#include "ZULKLOOutput.h"

/// What many tests need: owners of shared objects, captured diagnostic lines, hostile floating-point
/// environments.
namespace ZULTest
{
/// Releases a shared object.
struct Releaser {
    template <class Object>
    void operator()(Object* object) const
    {
        object->Release();
    }
};

/// The ownership that a creator has of a plane, point, polygon or polyhedron.
template <class Object>
using Owner = std::unique_ptr<Object, Releaser>;

template <class Object>
Owner<Object> Own(Object* object)
{
    return Owner<Object>(object);
}

/// While alive, the diagnostic lines go to a text.
class LineCapture
{
public:
    LineCapture() : m_Previous(ZULKLOOutput::Redirect(&m_Text)) {}
    ~LineCapture() { ZULKLOOutput::Redirect(m_Previous); }
    LineCapture(const LineCapture&) = delete;
    LineCapture& operator=(const LineCapture&) = delete;

    std::string GetText() const { return m_Text.str(); }

private:
    std::ostringstream m_Text;
    std::ostream* m_Previous;
};

#if ZUL_HAS_SSE2
/// Control words that a host may have set: rounding modes, denormals flushed or read as zero, unmasked
/// exceptions, flags raised.
inline std::vector<ZULExpProcessor::ControlWord> HostileControlWords()
{
    constexpr unsigned int masked = 0x1F80;
    constexpr unsigned int flushToZero = 0x8000;
    constexpr unsigned int denormalsAreZero = 0x0040;
    constexpr unsigned int down = 0x2000;
    constexpr unsigned int up = 0x4000;
    constexpr unsigned int towardsZero = 0x6000;
    constexpr unsigned int allFlags = 0x003F;
    return {masked | down,
            masked | up,
            masked | towardsZero,
            masked | flushToZero | denormalsAreZero,
            masked | up | flushToZero | denormalsAreZero | allFlags,
            masked | allFlags,
            0U,
            down | flushToZero};
}

/// Runs a function under the control word, puts the old one back and returns the word that the function left.
template <class Function>
ZULExpProcessor::ControlWord RunUnder(ZULExpProcessor::ControlWord word, const Function& function)
{
    const ZULExpProcessor::ControlWord saved = ZULExpProcessor::ReadControlWord();
    ZULExpProcessor::WriteControlWord(word);
    function();
    const ZULExpProcessor::ControlWord left = ZULExpProcessor::ReadControlWord();
    ZULExpProcessor::WriteControlWord(saved);
    return left;
}
#endif
}  // namespace ZULTest

#endif
