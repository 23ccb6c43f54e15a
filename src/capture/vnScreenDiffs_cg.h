#pragma once

#include "Displays.h"
#include "vnScreenDiffs.h"

/// The differ on the refresh reports of the host's displays.
class vnScreenDiffs_cg : public vnScreenDiffs, private host::RefreshListener {
  public:
    bool CanDoDiffs() override;
    void Start() override;
    void Stop() override;

  private:
    void ScreenRefreshed(std::span<const host::Rect> areas) override;
};
