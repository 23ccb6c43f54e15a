#pragma once

#include <memory>
#include <vector>

class zCritical;

/// Small numbers to borrow and give back: always the lowest free one, so that they stay dense. Any thread may
/// use it.
class zPackedUniqueID {
  public:
    /// Room for `size` numbers; when they are all taken it grows by as many again.
    explicit zPackedUniqueID(int size);
    ~zPackedUniqueID();

    int BorrowID();

    /// Gives a number back; one out of range is ignored. Whether it was taken is not tested.
    void ReturnID(int id);

    int CurrentCount();

    /// Takes the lowest free number, or gives -1 when there is none. Expects the lock to be held.
    int find_and_use();

  private:
    std::vector<unsigned char> fTaken; // 0 free, 1 taken
    const int fGrowth;
    int fCount = 0;
    std::unique_ptr<zCritical> fCritical;
};
