#pragma once

#include <string>
#include <vector>

namespace host {

/// What the program's user set up, and what came with the program. This class itself is a machine that knows
/// of neither. Main thread.
class Desktop {
  public:
    virtual ~Desktop() = default;

    /// The languages that the user wants to read, best first, as names of locales without a character set:
    /// "de_AT", "pt_BR", "ja". Empty when there is no preference.
    virtual std::vector<std::string> PreferredLanguages() { return {}; }

    /// The full path of a file that came with the program, by its name below the resources, as in
    /// "languages/a.xml". Empty when there is none.
    virtual std::string ResourcePath(const std::string& /*name*/) { return {}; }
};

} // namespace host
