#pragma once

#include <array>
#include <memory>
#include <vector>

#include "zCritical.h"
#include "zRect.h"

/// Tells which parts of the screen changed since it was asked last. No pixels are compared: what the machine
/// reports as drawn is folded into a short list of regions, and a service borrows that list once per tick.
///
/// Reports come on the main thread, borrowing on a service's; a lock of its own, always taken inside the
/// shared one, guards the lists, and a list on loan is read without it.
class vnScreenDiffs {
  public:
    /// Rectangles at most so many pixels apart, each way, become one region: scattered activity ends up in a
    /// few pictures, at the price of some unchanged pixels between.
    static constexpr int kReach = 256;

    /// How much room the lists have at first, and by how much they grow.
    static constexpr int kListStep = 128;

    vnScreenDiffs();
    virtual ~vnScreenDiffs();
    vnScreenDiffs(const vnScreenDiffs&) = delete;
    vnScreenDiffs& operator=(const vnScreenDiffs&) = delete;

    /// A new one on the host's displays, the caller's.
    static vnScreenDiffs* Factory();

    /// False while changes of the main display go unreported: it has to be captured whole.
    virtual bool CanDoDiffs() = 0;

    /// Begins to gather and ends that. Main thread only; Stop comes before the destructor.
    virtual void Start() = 0;
    virtual void Stop() = 0;

    /// The regions that changed since the list before, in screen coordinates, \p count of them; never null.
    /// It may be read until RectList_Return, which comes before the next Borrow.
    zRect* RectList_Borrow(int& count);
    void RectList_Return();

  protected:
    /// Unites \p rect with the first region in its reach, else appends it. The grown region isn't compared
    /// again: regions of a list may overlap. \p delayed holds it back until the second pop_delayed from now.
    void add_rect(const zRect& rect, bool delayed);

    /// Hands on what was held back before the pop_delayed before this one.
    void pop_delayed();

  private:
    using RectList = std::vector<zRect>;

    std::array<RectList, 4> fLists Z_GUARDED_BY(fLock); ///< A pair in turns, and one for delayed rectangles.
    unsigned int fCurrentList Z_GUARDED_BY(fLock) = 0;  ///< 0 or 1: takes new rectangles.
    unsigned int fDelayedList Z_GUARDED_BY(fLock) = 2;  ///< 2 or 3: takes delayed ones.
    int fBorrowCount Z_GUARDED_BY(fLock) = 0;
    std::unique_ptr<zCritical> fLock;
};
