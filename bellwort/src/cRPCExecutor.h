#pragma once

#include "zList.h"
#include "zRefCount.h"

class cBuffer;
class zRecord;

/// One service behind the RPC handler: says which methods it has, and runs them.
/// All calls come on the server's thread, one at a time.
class cRPCExecutor : public zRefCount {
  public:
    /// True if this executor runs `method`. The name may be null or empty, which no executor runs.
    virtual bool RPC_ImplementsMethod(const char* method) = 0;

    /// Runs `method`. `request` is the parsed call, valid for this call alone. On 0 the client gets `reply`
    /// as XML; when `attachments` has entries, as the first section of a multipart message whose further
    /// sections `multipart` (a `cMultipartRecord`) describes: attachment i belongs to section i + 1 and has
    /// exactly the size declared there. Each appended attachment carries a reference of its own, which the
    /// handler releases after the send. On any other result the client gets no bytes at all.
    virtual int RPC_ExecuteMethod(const char* method, const zRecord& request, zRecord& reply,
                                  zRecord& multipart, zList<cBuffer*>& attachments) = 0;

    /// Called once after each executed method, when its reply has left or has failed to.
    virtual void RPC_DataSent() {}
};
