#pragma once

class zRect;

/// Says which part of the desktop is the picture. It is asked at every Grab, so that a source may move.
class vnFocus {
  public:
    virtual ~vnFocus() = default;

    /// Fills \p rect in screen coordinates. 0, or another value when there is none at present.
    virtual int Rect(zRect& rect) = 0;
};
