#include "zTerrace.h"

#include "zBoot.h"
#include "zCriticalRW.h"
#include "zErrCodeManager.h"
#include "zObserverHandler.h"
#include "zSocket.h"
#include "zStacker.h"
#include "zStringID.h"
#include "zThread.h"
#include "zTrace.h"
#include "zVariable.h"

namespace {
constexpr int kFirstErrorCode = 0;
constexpr int kLastErrorCode = -1000;

zBoot gBoot(zTerrace::Startup, zTerrace::Shutdown, zTerrace::kModuleID);
} // namespace

void zTerrace::boot_Module() {}

void zTerrace::Startup() {
    zThread::Startup();
    zTrace::Startup();
    zStackerDebugStats::Startup();
    zCriticalRW::Startup();
    zVariable::Startup();
    zStringID::Startup();
    zSocket::Startup();
    zObserverHandler::Startup();
    zErrCodeManager::RegisterCodeRange(kFirstErrorCode, kLastErrorCode, "terrace errors");
    string_defines();
}

// Deliberate: not the mirror of the start. Values may still be printed while the names go.
void zTerrace::Shutdown() {
    zObserverHandler::Shutdown();
    zSocket::Shutdown();
    zStringID::Shutdown();
    zVariable::Shutdown();
    zCriticalRW::Shutdown();
    zTrace::Shutdown();
    zThread::Shutdown();
    zErrCodeManager::FreeMemory();
}

void zTerrace::string_defines() {
    static constexpr struct {
        uint32_t id;
        const char* name;
    } kNames[] = {
        {z4CCCC("ridx"), "rec_index"}, {z4CCCC("what"), "what"},     {z4CCCC("tbid"), "table_id"},
        {z4CCCC("obID"), "obs_id"},    {z4CCCC("size"), "size"},     {z4CCCC("colr"), "color"},
        {z4CCCC("type"), "type"},      {z4CCCC("xTag"), "_xml_tag"},
    };
    for (const auto& entry : kNames)
        zStringID::Default()->Add(static_cast<int>(entry.id), entry.name, false);
}
