#pragma once

#include <memory>
#include <string>

#include "Address.h"
#include "Reply.h"

class cHttpSession;

namespace receiver {

class Interruption;

/// Calls the methods of one server, one at a time. One thread.
class Connection {
  public:
    struct Limits {
        double seconds = 5; ///< That a call may take; a method that fails answers nothing.
        unsigned int bytes = 128u * 1024 * 1024; ///< Of one reply.
    };

    /// \p interruption, which may be null and outlives the connection, breaks off calls.
    Connection(Address address, const Interruption* interruption)
        : Connection(std::move(address), interruption, Limits()) {}
    Connection(Address address, const Interruption* interruption, Limits limits);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Makes a call, an XML-RPC "methodCall", and waits for its reply, which is valid until the next call.
    /// Null with a reason if none came in time that makes sense; the next call then gets a new connection.
    const Reply* Call(const zRecord& call, std::string& reason);
    /// Calls a method with one struct, made of the record's variables.
    const Reply* Call(const char* method, const zRecord& members, std::string& reason);
    /// Calls a method without parameters.
    const Reply* Call(const char* method, std::string& reason);

    const Address& Server() const { return fAddress; }
    /// Of all replies so far, without their heads.
    uint64_t BytesReceived() const { return fBytesReceived; }

  private:
    bool fetch(const zRecord& call, std::string& reason);
    bool wait(std::string& reason);
    std::string failure(int code) const;

    const Address fAddress;
    const Interruption* fInterruption;
    const Limits fLimits;
    std::unique_ptr<cHttpSession> fSession; ///< Null while there is no connection.
    zBuffer fBody;
    Reply fReply;
    uint64_t fBytesReceived = 0;
};

} // namespace receiver
