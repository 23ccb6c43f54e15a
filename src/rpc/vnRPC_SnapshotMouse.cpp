#include "vnRPC_SnapshotMouse.h"

#include <cstring>

#include "cMultipartRecord.h"
#include "cUtils.h"
#include "vnSnapshot.h"
#include "vnSnapshotBuffer.h"
#include "zCritical.h"
#include "zPoint.h"
#include "zRecord.h"
#include "zString.h"
#include "zXMLRPC.h"

namespace {

constexpr const char* kMethod = "SnapshotMouse";
constexpr const char* kShapeId = "id_mouse_shape";
constexpr const char* kShapeType = "application/cursor-binary";
constexpr unsigned int kKeepContentsAndBlock = zBuffer::kKeepContents | zBuffer::kKeepLargerBlock;

} // namespace

vnRPC_SnapshotMouse::vnRPC_SnapshotMouse(zCritical* lock, vnSnapshot* device, uint32_t instanceId)
    : fDevice(device), fLock(lock), fInstanceId(instanceId) {
    fDevice->Open();
}

vnRPC_SnapshotMouse::~vnRPC_SnapshotMouse() {
    fDevice->Close();
    fShapes.RemoveAndReleaseAll();
    if (fSpare)
        fSpare->Release();
}

bool vnRPC_SnapshotMouse::RPC_ImplementsMethod(const char* method) {
    return method && zString::strcasecmp(method, kMethod) == 0;
}

int vnRPC_SnapshotMouse::RPC_ExecuteMethod(const char* method, const zRecord& request, zRecord& reply,
                                           zRecord& multipart, zList<cBuffer*>& attachments) {
    return RPC_ImplementsMethod(method) ? snapshot_mouse(request, reply, multipart, attachments) : -1;
}

int vnRPC_SnapshotMouse::MouseInfo(zPoint& location, uint32_t& id) {
    if (!fSpare)
        fSpare = new vnSnapBuff_mouse;
    zRect rect;
    int rowBytes = 0;
    int colorSpace = 0;
    if (const int result = fDevice->MouseInfo(rect, fSpare->Store(), rowBytes, colorSpace); result != 0)
        return result;

    zAutoCritical lock(fLock);
    const auto size = static_cast<unsigned int>(rowBytes * rect.Height());
    bool isNew = false;
    id = number_of_spare(size, isNew);
    if (isNew) {
        fSpare->SetMouseId(id);
        fSpare->Configure(rect.Width(), rect.Height(), rowBytes, static_cast<uint32_t>(colorSpace));
        fSpare->Store().ResizeTo(size, kKeepContentsAndBlock);
        fShapes.Append(fSpare);
        fSpare = nullptr;
    }
    location = zPoint(rect.left, rect.top);
    return 0;
}

uint32_t vnRPC_SnapshotMouse::number_of_spare(unsigned int size, bool& isNew) {
    uint32_t next = 1;
    for (vnSnapBuff_mouse* shape : fShapes) {
        const auto shapeSize = static_cast<unsigned int>(shape->RowBytes() * shape->Height());
        if (shapeSize == size && shape->Data() && fSpare->Data() &&
            memcmp(shape->Data(), fSpare->Data(), size) == 0)
            return shape->MouseId();
        if (next <= shape->MouseId())
            next = shape->MouseId() + 1;
    }
    isNew = true;
    return next;
}

vnSnapBuff_mouse* vnRPC_SnapshotMouse::find_shape(uint32_t id) {
    for (vnSnapBuff_mouse* shape : fShapes) {
        if (shape->MouseId() == id)
            return shape;
    }
    return nullptr;
}

int vnRPC_SnapshotMouse::snapshot_mouse(const zRecord& request, zRecord& reply, zRecord& multipart,
                                        zList<cBuffer*>& attachments) {
    zRecord parameters;
    zXMLRPC(request).GetStructParam(0, parameters);
    const uint32_t id = parameters.AsUInt32("mouse_id", 0);

    vnSnapBuff_mouse* shape = nullptr;
    {
        zAutoCritical lock(fLock);
        shape = find_shape(id);
        if (shape) {
            describe_shape(*shape, reply, multipart);
            shape->AddRef();
            attachments.Append(shape);
        }
    }
    const int result = shape ? 0 : -1;
    reply.SetCString(zRecord::kXMLTag, "response");
    reply.SetInt32("error", result);
    return result;
}

void vnRPC_SnapshotMouse::describe_shape(vnSnapBuff_mouse& shape, zRecord& reply, zRecord& multipart) {
    zString text;
    multipart.SetCString(cMultipartRecord::kContentTypeName, cMultipartRecord::kContentType);
    cMultipartRecord message(multipart);
    const int section = message.AddSection(shape.Size(), kShapeType);

    reply.SetUInt32("instance", fInstanceId);
    reply.SetInt32("width", shape.Width());
    reply.SetInt32("height", shape.Height());
    reply.SetInt32("rowbytes", shape.RowBytes());
    reply.SetInt32("colorspace", static_cast<int>(shape.ColorSpace()));
    reply.SetRect("section_rect_1", zRect(shape.Width(), shape.Height()));
    cUtils::XOP_MakeReference(text, kShapeId);
    reply.SetCString("mouse_shape", text);

    cUtils::XOP_MakeContentIDHeaderString(text, kShapeId);
    message.AddSectionHeader(section, "Content-ID", text);
}
