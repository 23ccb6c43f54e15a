#pragma once

/// A counted signal: each Signal lets exactly one Wait go on, whether the wait began before or after it. Made
/// by Factory only, held and deleted by pointer; nobody may be waiting when it is deleted.
class zSignal {
  public:
    /// The caller owns the signal.
    static zSignal* Factory();

    virtual ~zSignal() = default;
    zSignal(const zSignal&) = delete;
    zSignal& operator=(const zSignal&) = delete;

    virtual void Wait() = 0;
    /// 0 when signalled, -1 on time-out.
    /// Deliberate: the parts of a second of now and of the time-out are added without a carry, and a sum of a
    /// second or more counts as a time-out at once. Callers loop, and rely on waiting at most that long.
    virtual int Wait(long long microseconds) = 0;
    virtual void Signal() = 0;
    /// Takes back one signal that no Wait has used yet; false when there is none.
    virtual bool TakeBack() = 0;

  protected:
    zSignal() = default;
};
