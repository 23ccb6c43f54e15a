#pragma once

#include <cstdint>

#include "zRefCount.h"

/// A block of bytes that travels with an RPC reply as one attachment: a picture, a pointer shape, sound.
/// Reference-counted, so that an executor may keep its buffer between replies while a reply is still being
/// sent from it; the bytes are never copied on their way to the socket.
class cBuffer : public zRefCount {
  public:
    /// The first byte, owned by the buffer; may be null while `Size()` is 0. It may move when the owner
    /// refills the buffer.
    virtual uint8_t* Data() = 0;
    /// How many bytes there are.
    virtual int Size() = 0;
};
