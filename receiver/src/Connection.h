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

    /// Makes a call, an XML-RPC "methodCall", and waits for its reply. False with a reason if none came in
    /// time that makes sense; the next call then gets a new connection.
    bool Call(const zRecord& call, Reply& reply, std::string& reason);
    /// Calls a method with one struct, made of the record's variables.
    bool Call(const char* method, const zRecord& members, Reply& reply, std::string& reason);
    /// Calls a method without parameters.
    bool Call(const char* method, Reply& reply, std::string& reason);

    /// Other limits, for the next calls.
    void SetLimits(const Limits& limits) { fLimits = limits; }

    const Address& Server() const { return fAddress; }
    /// Of all replies so far, without their heads.
    uint64_t BytesReceived() const { return fBytesReceived; }

  private:
    bool fetch(const zRecord& call, zBuffer& body, std::string& reason);
    bool wait(std::string& reason);
    std::string failure(int code) const;

    const Address fAddress;
    const Interruption* fInterruption;
    Limits fLimits;
    std::unique_ptr<cHttpSession> fSession; ///< Null while there is no connection.
    uint64_t fBytesReceived = 0;
};

} // namespace receiver
