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

    /// What the program's packager set, as an integer; 0 for what nobody set.
    virtual int InfoValue(const std::string& /*key*/) { return 0; }

    /// The folder of the user's own files; empty when there is none.
    virtual std::string HomeDirectory() { return {}; }

    /// Writes a file with a line for each socket of this machine that listens on exactly that TCP port; an
    /// empty file when there is none. 0, or -1 without a file.
    virtual int WriteTCPListeners(int /*port*/, const std::string& /*path*/) { return -1; }

    // The system's firewall preference files, in their two shapes.
    static constexpr char kRuleFirewallFile[] = "/Library/Preferences/com.apple.sharing.firewall.plist";
    static constexpr char kApplicationFirewallFile[] = "/Library/Preferences/com.apple.alf.plist";

    /// The contents of one of these files, a property list as XML, as far as it is about connections that
    /// come in on that TCP port. Empty when there is none, or when this user may not know.
    virtual std::string FirewallPreferences(const std::string& /*path*/, int /*port*/) { return {}; }

    /// Opens a file in the program that the user chose for its kind, or an address in the browser, without
    /// waiting for that program. True when it was asked to open.
    virtual bool OpenFile(const std::string& /*path*/) { return false; }
    virtual bool OpenAddress(const std::string& /*url*/) { return false; }
};

} // namespace host
