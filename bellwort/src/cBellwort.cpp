#include "cBellwort.h"

#include "cFirewall.h"
#include "z4CCCC.h"
#include "zBoot.h"
#include "zErrCodeManager.h"
#include "zTerrace.h"

namespace {

void startup() {
    zBoot::Depends(z4CCCC("terr"), zTerrace::boot_Module);
    cFirewall::Startup();
    zErrCodeManager::RegisterCodeRange(-21000, -8999, "bellwort errors");
}

void shutdown() {
    cFirewall::Shutdown();
}

zBoot gBoot(startup, shutdown, z4CCCC("BLWT"));

} // namespace

void cBellwort::boot_Module() {}
