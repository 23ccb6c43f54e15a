#pragma once

#include "Desktop.h"

namespace host {

/// Languages by the locale variables of the environment; resources in `share/glasspane` beside the `bin` that
/// the program was started from, which holds for an installation as for a build tree.
class PosixDesktop : public Desktop {
  public:
    std::vector<std::string> PreferredLanguages() override;
    std::string ResourcePath(const std::string& name) override;
};

} // namespace host
