#include "MillDecisions.h"

MillDecisions CollectDecisions()
{
    return {};
}
