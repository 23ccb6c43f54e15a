#include "cBellwort.h"

#include "z4CCCC.h"
#include "zBoot.h"
#include "zErrCodeManager.h"
#include "zTerrace.h"

namespace {

void startup() {
    zBoot::Depends(z4CCCC("terr"), zTerrace::boot_Module);
    zErrCodeManager::RegisterCodeRange(-21000, -8999, "bellwort errors");
}

zBoot gBoot(startup, nullptr, z4CCCC("BLWT"));

} // namespace

void cBellwort::boot_Module() {}
