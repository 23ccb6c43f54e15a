#pragma once

/// An object that each thread has for itself, in a slot of zThread::TLS_ReserveClassSlot. It is deleted on
/// its own thread when that ends.
class zThreadTLS {
  public:
    virtual ~zThreadTLS() = default;
    zThreadTLS(const zThreadTLS&) = delete;
    zThreadTLS& operator=(const zThreadTLS&) = delete;

  protected:
    zThreadTLS() = default;
};
