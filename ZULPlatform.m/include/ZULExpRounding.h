#ifndef ZULExpRounding_h
#define ZULExpRounding_h

#include "ZULExpFloatStatus.h"

/// While alive, the calling thread rounds upwards, as ZULExpInterval needs, with every exception masked and
/// no flag raised. The destructor puts the caller's control word back, on every exit. Guards nest.
class ZULExpRounding
{
public:
    ZULExpRounding() : m_Saved(ZULExpProcessor::ReadControlWord())
    {
        ZULExpProcessor::SetUpwardControlWord();
    }
    ~ZULExpRounding() { ZULExpProcessor::WriteControlWord(m_Saved); }
    ZULExpRounding(const ZULExpRounding&) = delete;
    ZULExpRounding& operator=(const ZULExpRounding&) = delete;

private:
    ZULExpProcessor::ControlWord m_Saved;
};

#endif
