#include "vnRPC_Snapshot.h"

#include <utility>

#include "cMultipartRecord.h"
#include "vnRPC_Encoder.h"
#include "vnRPC_SnapshotMouse.h"
#include "vnRemoteControlInterface.h"
#include "vnSnapshot.h"
#include "vnSnapshotBuffer.h"
#include "zCritical.h"
#include "zRecord.h"
#include "zString.h"
#include "zXMLRPC.h"

namespace {

constexpr const char* kProtocolVersion = "1.0.5";

} // namespace

const vnRPC_Snapshot::MethodEntry vnRPC_Snapshot::kMethods[] = {
    {"Snapshot", &vnRPC_Snapshot::snapshot},
    {"Snapshot_MaximumRect", &vnRPC_Snapshot::snapshot_maximum_rect},
    {"CheckConnection", &vnRPC_Snapshot::check_connection},
    {"GetMenus", &vnRPC_Snapshot::get_menus},
    {"SetSourceFromMenuItem", &vnRPC_Snapshot::set_source_from_menu_item},
    {"EnableOrDisableAudioOrVideo", &vnRPC_Snapshot::enable_or_disable_audio_or_video},
};

vnRPC_Snapshot::vnRPC_Snapshot(zCritical* lock, vnSnapshot* device, vnRPC_SnapshotMouse* mouse,
                               vnRemoteControlInterface* remoteControl)
    : fDevice(device), fLock(lock), fMouse(mouse), fRemoteControl(remoteControl) {
    fDevice->Open();
    fFrame = fDevice->NewBuffer();
    SignalThread_Start();
    fMouse->AddRef();
    if (fRemoteControl)
        fRemoteControl->AddRef();
}

vnRPC_Snapshot::~vnRPC_Snapshot() {
    SignalThread_Stop();
    fDevice->Close();
    if (fFrame)
        fFrame->Release();
    fMouse->Release();
    if (fRemoteControl)
        fRemoteControl->Release();
}

const vnRPC_Snapshot::MethodEntry* vnRPC_Snapshot::find_method(const char* name) {
    for (const MethodEntry& method : kMethods) {
        if (name && zString::strcasecmp(name, method.name) == 0)
            return &method;
    }
    return nullptr;
}

bool vnRPC_Snapshot::RPC_ImplementsMethod(const char* method) {
    return find_method(method) != nullptr;
}

int vnRPC_Snapshot::RPC_ExecuteMethod(const char* name, const zRecord& request, zRecord& reply,
                                      zRecord& multipart, zList<cBuffer*>& attachments) {
    if (!name || !*name)
        return 0;
    const MethodEntry* method = find_method(name);
    vnRPC_Call call{request, reply, multipart, attachments};
    return method ? (this->*method->run)(call) : -1;
}

void vnRPC_Snapshot::SignalThread_Tick() {
    zAutoCritical lock(fLock);
    if (!fFrame)
        return;
    fTick.LookAtMouse(*fMouse);
    fTick.grabResult = fDevice->Grab(&fFrame, fCrop, &fTick.captured);
}

int vnRPC_Snapshot::snapshot(vnRPC_Call& call) {
    const vnRPC_PictureRequest request(call.request);
    vnRPC_TickState tick;
    zRect rect;
    {
        zAutoCritical lock(fLock);
        const bool isOtherCrop = request.crop != std::exchange(fCrop, request.crop);
        rect = request.Cropped(fDevice->MaximumRect());
        if (fTick.NeedsGrab(rect, isOtherCrop))
            SignalThread_Tick();
        if (fTick.grabResult == 0) {
            fEncoder.CheckAndResize(fTick.captured, *fFrame);
            fEncoder.Encode(*fFrame, request.quality);
        }
        tick = fTick;
    }
    const int result = tick.grabResult == 0 ? 0 : -1;
    if (result == 0)
        fill_reply(tick, rect, call);
    SignalThread_Signal();
    return result;
}

void vnRPC_Snapshot::fill_reply(const vnRPC_TickState& tick, const zRect& rect, vnRPC_Call& call) {
    call.multipart.SetCString(cMultipartRecord::kContentTypeName, cMultipartRecord::kContentType);
    call.reply.SetCString(zRecord::kXMLTag, "response");
    call.reply.SetInt32("error", 0);
    call.reply.SetUInt32("instance", fMouse->InstanceId());
    call.SetPicture();
    call.reply.SetRect("rect", rect);
    tick.AddMouse(call.reply);
    call.AddPicture(fEncoder.AddRefToPicture());
}

int vnRPC_Snapshot::snapshot_maximum_rect(vnRPC_Call& call) {
    zRect rect;
    {
        zAutoCritical lock(fLock);
        rect = fDevice->MaximumRect();
    }
    zXMLRPC response(call.reply);
    response.MakeResponse();
    response.AppendInt32Param(rect.Width());
    response.AppendInt32Param(rect.Height());
    return 0;
}

int vnRPC_Snapshot::check_connection(vnRPC_Call& call) {
    zXMLRPC response(call.reply);
    response.MakeResponse();
    response.AppendStringParam(kProtocolVersion);
    return 0;
}

int vnRPC_Snapshot::get_menus(vnRPC_Call& call) {
    if (!fRemoteControl)
        return -1;
    zRecord menus;
    fRemoteControl->GetMenus(menus);
    zXMLRPC response(call.reply);
    response.MakeResponse();
    response.AppendZRecordParam(menus);
    return 0;
}

int vnRPC_Snapshot::set_source_from_menu_item(vnRPC_Call& call) {
    if (!fRemoteControl)
        return -1;
    zRecord item;
    zXMLRPC(call.request).GetZRecordParam(0, item);
    fRemoteControl->SetSourceFromMenuItem(item);
    zXMLRPC(call.reply).MakeResponse();
    return 0;
}

int vnRPC_Snapshot::enable_or_disable_audio_or_video(vnRPC_Call& call) {
    if (!fRemoteControl)
        return -1;
    // Deliberate: clients call it, and capture is switched by the person at this machine alone.
    zXMLRPC(call.reply).MakeResponse();
    return 0;
}
