#pragma once

#include <string>
#include <vector>

#include "Address.h"

namespace receiver {

/// Which names the gateway answers to. A page elsewhere can have its own name point to this machine and so
/// get a browser to ask here for it: such requests carry that name, and are refused.
class AllowedHosts {
  public:
    /// \p names are allowed besides the address itself and this machine's own names.
    AllowedHosts(const Address& listen, const std::vector<std::string>& names);

    /// Why a request with these headers isn't served, in one line; empty if it is. \p origin is empty for a
    /// request without one.
    std::string Refusal(const std::string& host, const std::string& origin) const;

  private:
    bool is_allowed(const std::string& name) const;

    std::vector<std::string> fNames;
    bool fTakesAnyAddress; ///< It listens on all of this machine's, and an address is nobody's name.
};

} // namespace receiver
