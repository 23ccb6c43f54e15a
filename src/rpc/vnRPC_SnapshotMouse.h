#pragma once

#include <cstdint>

#include "cRPCExecutor.h"

class vnSnapBuff_mouse;
class vnSnapshot;
class zCritical;
class zPoint;

/// The catalogue of pointer shapes seen since launch, and the method "SnapshotMouse" that hands one out.
///
/// Pictures don't contain the pointer: a reply tells its place and the number of its shape, and a client
/// fetches the pixels of a number once. Shapes are told apart by their pixels, so that one which comes back
/// keeps its number. All numbers are void once the instance id changes.
class vnRPC_SnapshotMouse : public cRPCExecutor {
  public:
    /// \p lock (may be null) and \p device stay the caller's and outlive this service, which opens the
    /// device. \p instanceId tells this run of the server from others.
    vnRPC_SnapshotMouse(zCritical* lock, vnSnapshot* device, uint32_t instanceId);
    ~vnRPC_SnapshotMouse() override;

    bool RPC_ImplementsMethod(const char* method) override;
    int RPC_ExecuteMethod(const char* method, const zRecord& request, zRecord& reply, zRecord& multipart,
                          zList<cBuffer*>& attachments) override;

    /// Looks at the pointer: the left top corner of its shape in screen coordinates, and the shape's number.
    /// 0, or the device's code with both untouched. For the ticks of the snapshot services.
    int MouseInfo(zPoint& location, uint32_t& id);

    uint32_t InstanceId() const { return fInstanceId; }

  private:
    int snapshot_mouse(const zRecord& request, zRecord& reply, zRecord& multipart,
                       zList<cBuffer*>& attachments);
    void describe_shape(vnSnapBuff_mouse& shape, zRecord& reply, zRecord& multipart);
    uint32_t number_of_spare(unsigned int size, bool& isNew);
    vnSnapBuff_mouse* find_shape(uint32_t id);

    vnSnapshot* fDevice;
    zCritical* fLock;
    uint32_t fInstanceId;
    zList<vnSnapBuff_mouse*> fShapes; ///< One reference each; never shrinks.
    vnSnapBuff_mouse* fSpare = nullptr;
};
