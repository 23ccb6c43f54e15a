#pragma once

#include <cstdint>

#include "zList.h"
#include "zPoint.h"
#include "zRect.h"

class cBuffer;
class vnEncoderBuffer;
class vnRPC_SnapshotMouse;
class zRecord;
class zString;

inline bool vnRPC_SameSize(const zRect& a, const zRect& b) {
    return a.Width() == b.Width() && a.Height() == b.Height();
}

/// One call's records and attachments, as the executor contract hands them over.
struct vnRPC_Call {
    const zRecord& request;
    zRecord& reply;
    zRecord& multipart;
    zList<cBuffer*>& attachments;

    /// Appends a section of \p data, whose reference goes to the attachments, with one header beside its
    /// type. Returns the section's number.
    int AddSection(cBuffer* data, const char* type, const char* headerName, const char* headerValue);

    /// Appends a picture's section. Returns its number.
    int AddPicture(vnEncoderBuffer* picture);

    /// The reply's variable that tells something of a section, as in "section_rect_1".
    static zString SectionName(const char* kind, int section);

    /// Makes the reply refer to its picture.
    void SetPicture();
};

/// What a client asks of a picture method: a struct, all of whose members are optional.
struct vnRPC_PictureRequest {
    explicit vnRPC_PictureRequest(const zRecord& request);

    /// \p whole less the crop.
    zRect Cropped(const zRect& whole) const;

    uint32_t quality;    ///< A tag of vnRPC_Encoder.
    zRect crop;          ///< Four insets.
    uint32_t sequenceId; ///< How far the client has got; 0 to start over. SnapshotByDiffs only.
};

/// What a tick of a snapshot service leaves for the replies. Guarded by the service's lock.
struct vnRPC_TickState {
    static constexpr int kNoGrabYet = 0x6E6F4762; // n, o, G, b

    /// True if a request for a frame of \p wanted's size has to capture on the spot. After a failure, a crop
    /// that is not the one that failed does too: the mistake may be another client's.
    bool NeedsGrab(const zRect& wanted, bool isOtherCrop) const;

    void LookAtMouse(vnRPC_SnapshotMouse& mouse);

    /// Adds the pointer's place and shape, if there is one to be seen.
    void AddMouse(zRecord& reply) const;

    int grabResult = kNoGrabYet;
    zRect captured; ///< In screen coordinates.
    bool mouseValid = false;
    zPoint mouseLocation;
    uint32_t mouseId = 0;
};
