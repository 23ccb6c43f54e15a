#pragma once

// Clang checks lock use at compile time where it is told what a lock is; other compilers skip the notes.
#if defined(__clang__)
#define Z_CAPABILITY(name) __attribute__((capability(name)))
#define Z_SCOPED_CAPABILITY __attribute__((scoped_lockable))
#define Z_GUARDED_BY(lock) __attribute__((guarded_by(lock)))
#define Z_PT_GUARDED_BY(lock) __attribute__((pt_guarded_by(lock)))
#define Z_ACQUIRE(...) __attribute__((acquire_capability(__VA_ARGS__)))
#define Z_RELEASE(...) __attribute__((release_capability(__VA_ARGS__)))
#define Z_REQUIRES(...) __attribute__((requires_capability(__VA_ARGS__)))
#define Z_EXCLUDES(...) __attribute__((locks_excluded(__VA_ARGS__)))
#define Z_NO_THREAD_SAFETY_ANALYSIS __attribute__((no_thread_safety_analysis))
#else
#define Z_CAPABILITY(name)
#define Z_SCOPED_CAPABILITY
#define Z_GUARDED_BY(lock)
#define Z_PT_GUARDED_BY(lock)
#define Z_ACQUIRE(...)
#define Z_RELEASE(...)
#define Z_REQUIRES(...)
#define Z_EXCLUDES(...)
#define Z_NO_THREAD_SAFETY_ANALYSIS
#endif

/// A recursive lock: the thread that holds it may take it again, and gives it up with as many End calls as
/// Begin calls. Made by Factory only, held and deleted by pointer.
class Z_CAPABILITY("mutex") zCritical {
  public:
    /// The caller owns the lock. Deliberate: every mode gives the same recursive lock; callers pass 1.
    static zCritical* Factory(char mode);

    virtual ~zCritical() = default;
    zCritical(const zCritical&) = delete;
    zCritical& operator=(const zCritical&) = delete;

    virtual void Begin() Z_ACQUIRE() = 0;
    virtual void End() Z_RELEASE() = 0;

  protected:
    zCritical() = default;
};

/// Holds a lock for the length of a scope. A null lock is allowed and means none.
class Z_SCOPED_CAPABILITY zAutoCritical {
  public:
    explicit zAutoCritical(zCritical* lock) Z_ACQUIRE(lock) Z_NO_THREAD_SAFETY_ANALYSIS : fLock(lock) {
        if (fLock)
            fLock->Begin();
    }
    ~zAutoCritical() Z_RELEASE() Z_NO_THREAD_SAFETY_ANALYSIS {
        if (fLock)
            fLock->End();
    }
    zAutoCritical(const zAutoCritical&) = delete;
    zAutoCritical& operator=(const zAutoCritical&) = delete;

  private:
    zCritical* fLock;
};
