#include "vnRPC_Snapshot.h"

#include "cMultipartRecord.h"
#include "cUtils.h"
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
constexpr const char* kPictureId = "id_snapshot_image";
constexpr const char* kPictureType = "image/jpg";

bool same_size(const zRect& a, const zRect& b) {
    return a.Width() == b.Width() && a.Height() == b.Height();
}

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
    if (fEncoded)
        fEncoded->Release();
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
    Call call{request, reply, multipart, attachments};
    return method ? (this->*method->run)(call) : -1;
}

void vnRPC_Snapshot::SignalThread_Tick() {
    zAutoCritical lock(fLock);
    if (!fFrame)
        return;
    fTick.mouseValid = fMouse->MouseInfo(fTick.mouseLocation, fTick.mouseId) == 0;
    fTick.grabResult = fDevice->Grab(&fFrame, fCrop, &fTick.captured);
}

int vnRPC_Snapshot::snapshot(Call& call) {
    zRecord parameters;
    zXMLRPC(call.request).GetStructParam(0, parameters);
    const uint32_t quality = vnRPC_Encoder::QualityFromString(parameters.AsCString("quality", "normal"));
    const zRect crop(parameters.AsInt32("crop_left", 0), parameters.AsInt32("crop_top", 0),
                     parameters.AsInt32("crop_right", 0), parameters.AsInt32("crop_bottom", 0));

    Tick tick;
    zRect rect;
    {
        zAutoCritical lock(fLock);
        fCrop = crop;
        rect = cropped_rect(crop);
        if (fTick.grabResult == Tick::kNoGrabYet || !same_size(rect, fTick.captured))
            SignalThread_Tick();
        if (fTick.grabResult == 0)
            encode_frame(quality);
        tick = fTick;
    }
    const int result = tick.grabResult == 0 ? 0 : -1;
    if (result == 0)
        fill_reply(tick, rect, call);
    SignalThread_Signal();
    return result;
}

zRect vnRPC_Snapshot::cropped_rect(const zRect& crop) {
    const zRect whole = fDevice->MaximumRect();
    return {zRect::Add(whole.left, crop.left), zRect::Add(whole.top, crop.top),
            zRect::Subtract(whole.right, crop.right), zRect::Subtract(whole.bottom, crop.bottom)};
}

void vnRPC_Snapshot::encode_frame(uint32_t quality) {
    check_and_resize_encoder();
    // A failed encoding sends what the buffer holds.
    if (fFrame->Data() && fFrame->Size() > 0)
        fEncoder->EncodeJPEG(*fEncoded, fFrame->Data(), fFrame->Size(), quality);
}

void vnRPC_Snapshot::check_and_resize_encoder() {
    if (fEncoded && same_size(fTick.captured, fEncoderRect))
        return;
    if (fEncoded)
        fEncoded->Release();
    fEncoderRect = fTick.captured;
    fEncoder.reset(vnRPC_Encoder::Factory(fEncoderRect.Width(), fEncoderRect.Height(), fFrame->RowBytes()));
    fEncoded = fEncoder->NewBuffer();
}

void vnRPC_Snapshot::fill_reply(const Tick& tick, const zRect& rect, Call& call) {
    zString text;
    call.multipart.SetCString(cMultipartRecord::kContentTypeName, cMultipartRecord::kContentType);
    call.reply.SetCString(zRecord::kXMLTag, "response");
    call.reply.SetInt32("error", 0);
    call.reply.SetUInt32("instance", fMouse->InstanceId());
    cUtils::XOP_MakeReference(text, kPictureId);
    call.reply.SetCString("picture", text);
    call.reply.SetRect("rect", rect);
    if (tick.mouseValid) {
        call.reply.SetPoint("mouse_location", tick.mouseLocation);
        call.reply.SetUInt32("mouse_id", tick.mouseId);
    }

    cMultipartRecord message(call.multipart);
    const int section = message.AddSection(fEncoded->Size(), kPictureType);
    cUtils::XOP_MakeContentIDHeaderString(text, kPictureId);
    message.AddSectionHeader(section, "Content-ID", text);
    fEncoded->AddRef();
    call.attachments.Append(fEncoded);
}

int vnRPC_Snapshot::snapshot_maximum_rect(Call& call) {
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

int vnRPC_Snapshot::check_connection(Call& call) {
    zXMLRPC response(call.reply);
    response.MakeResponse();
    response.AppendStringParam(kProtocolVersion);
    return 0;
}

int vnRPC_Snapshot::get_menus(Call& call) {
    if (!fRemoteControl)
        return -1;
    zRecord menus;
    fRemoteControl->GetMenus(menus);
    zXMLRPC response(call.reply);
    response.MakeResponse();
    response.AppendZRecordParam(menus);
    return 0;
}

int vnRPC_Snapshot::set_source_from_menu_item(Call& call) {
    if (!fRemoteControl)
        return -1;
    zRecord item;
    zXMLRPC(call.request).GetZRecordParam(0, item);
    fRemoteControl->SetSourceFromMenuItem(item);
    zXMLRPC(call.reply).MakeResponse();
    return 0;
}

int vnRPC_Snapshot::enable_or_disable_audio_or_video(Call& call) {
    if (!fRemoteControl)
        return -1;
    // Deliberate: clients call it, and capture is switched by the person at this machine alone.
    zXMLRPC(call.reply).MakeResponse();
    return 0;
}
