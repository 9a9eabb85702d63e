// Ends in a fatal error that no handler takes.
#include "ZULKLOOutput.h"
#include "ZULSystem.h"

int main()
{
    ZULKLOOutput::GetOut() << "before\n";
    ZULFatalError("broken", "one", nullptr, "three", "Source", 42);
    ZULKLOOutput::GetOut() << "after\n";
    return 0;
}
