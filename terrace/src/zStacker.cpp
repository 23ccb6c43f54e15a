#include "zStacker.h"

void zStackerDebugStats::Startup() {
    fStackBytes = 0;
    fStackWasted = 0;
    fHeapBytes = 0;
    fReallocations = 0;
}
