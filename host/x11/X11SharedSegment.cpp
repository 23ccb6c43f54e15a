#include "X11SharedSegment.h"

#include <sys/ipc.h>
#include <sys/shm.h>

#include <xcb/shm.h>
#include <xcb/xcb.h>

#include "X11Reply.h"

namespace host {

int X11SharedSegment::Reserve(size_t bytes) {
    if (bytes <= fCapacity)
        return 0;
    release();
    const int segment = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    if (segment < 0)
        return -1;
    void* address = shmat(segment, nullptr, 0);
    const bool attachedHere = reinterpret_cast<intptr_t>(address) != -1; // shmat's way to fail
    if (attachedHere)
        fPixels = static_cast<uint8_t*>(address);
    const bool attachedThere = attachedHere && attach_server(segment);
    shmctl(segment, IPC_RMID, nullptr);
    if (!attachedThere) {
        release();
        return -1;
    }
    fCapacity = bytes;
    return 0;
}

/// A server in another container may take the number for a segment of its own machine's: then it succeeds,
/// but no one else holds ours.
bool X11SharedSegment::attach_server(int segment) {
    const uint32_t id = xcb_generate_id(fXcb);
    const auto cookie = xcb_shm_attach_checked(fXcb, id, static_cast<uint32_t>(segment), false);
    if (X11Reply<xcb_generic_error_t>(xcb_request_check(fXcb, cookie)) || xcb_connection_has_error(fXcb))
        return false;
    fId = id;
    shmid_ds status = {};
    return shmctl(segment, IPC_STAT, &status) == 0 && status.shm_nattch >= 2;
}

void X11SharedSegment::release() {
    if (fId)
        xcb_shm_detach(fXcb, fId);
    if (fPixels)
        shmdt(fPixels);
    fId = 0;
    fPixels = nullptr;
    fCapacity = 0;
}

} // namespace host
