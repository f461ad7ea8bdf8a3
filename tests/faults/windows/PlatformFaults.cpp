#include "faults/Fault.h"

Section platformFaults()
{
    return {"Resources", {}};
}
