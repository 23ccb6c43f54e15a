#include "vnRPC_Call.h"

#include "cMultipartRecord.h"
#include "cUtils.h"
#include "vnRPC_Encoder.h"
#include "vnRPC_SnapshotMouse.h"
#include "zRecord.h"
#include "zString.h"
#include "zXMLRPC.h"

namespace {

constexpr const char* kPictureId = "id_snapshot_image";
constexpr const char* kPictureType = "image/jpg";

} // namespace

int vnRPC_Call::AddSection(cBuffer* data, const char* type, const char* headerName, const char* headerValue) {
    cMultipartRecord message(multipart);
    const int section = message.AddSection(data->Size(), type);
    message.AddSectionHeader(section, headerName, headerValue);
    attachments.Append(data);
    return section;
}

int vnRPC_Call::AddPicture(vnEncoderBuffer* picture) {
    zString id;
    cUtils::XOP_MakeContentIDHeaderString(id, kPictureId);
    return AddSection(picture, kPictureType, "Content-ID", id);
}

zString vnRPC_Call::SectionName(const char* kind, int section) {
    zString name;
    name.sprintf("section_%s_%d", kind, section);
    return name;
}

void vnRPC_Call::SetPicture() {
    zString reference;
    cUtils::XOP_MakeReference(reference, kPictureId);
    reply.SetCString("picture", reference);
}

vnRPC_PictureRequest::vnRPC_PictureRequest(const zRecord& request) {
    zRecord parameters;
    zXMLRPC(request).GetStructParam(0, parameters);
    quality = vnRPC_Encoder::QualityFromString(parameters.AsCString("quality", "normal"));
    crop = zRect(parameters.AsInt32("crop_left", 0), parameters.AsInt32("crop_top", 0),
                 parameters.AsInt32("crop_right", 0), parameters.AsInt32("crop_bottom", 0));
    sequenceId = parameters.AsUInt32("sequence_id", 0);
}

zRect vnRPC_PictureRequest::Cropped(const zRect& whole) const {
    return {zRect::Add(whole.left, crop.left), zRect::Add(whole.top, crop.top),
            zRect::Subtract(whole.right, crop.right), zRect::Subtract(whole.bottom, crop.bottom)};
}

bool vnRPC_TickState::NeedsGrab(const zRect& wanted, bool isOtherCrop) const {
    return grabResult == kNoGrabYet || !vnRPC_SameSize(wanted, captured) || (grabResult != 0 && isOtherCrop);
}

void vnRPC_TickState::LookAtMouse(vnRPC_SnapshotMouse& mouse) {
    mouseValid = mouse.MouseInfo(mouseLocation, mouseId) == 0;
}

void vnRPC_TickState::AddMouse(zRecord& reply) const {
    if (!mouseValid)
        return;
    reply.SetPoint("mouse_location", mouseLocation);
    reply.SetUInt32("mouse_id", mouseId);
}
