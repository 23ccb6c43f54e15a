#include "cFirewall.h"

#include <gtest/gtest.h>

#include "FakeHost.h"

namespace {

/// A machine with the preference file of its firewall for applications.
class FirewalledHost : public FakeHost, private host::Desktop {
  public:
    std::string dictionary;

    host::Desktop& DesktopPort() override { return *this; }
    std::string FirewallPreferences(const std::string& path, int) override {
        return path != kApplicationFirewallFile ? std::string()
                                                : "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE "
                                                  "plist PUBLIC \"-//A//DTD 1.0//EN\" "
                                                  "\"http://a/b.dtd\">\n<plist version=\"1.0\">\n<dict>\n" +
                                                      dictionary + "\n</dict>\n</plist>\n";
    }
};

TEST(FirewallTest, ItsStateDecides) {
    FirewalledHost machine;
    const host::HostScope scope(machine);
    const struct {
        const char* dictionary;
        bool blocked;
    } cases[] = {
        {"<key>globalstate</key>\n<integer>0</integer>", false},
        {"<key>globalstate</key><integer>1</integer><key>applications</key><array/>", false},
        {"<key>applications</key><array><dict><key>state</key><integer>1</integer></dict></array>"
         "<key>globalstate</key><integer>2</integer>",
         true},
        {"<key>globalstate</key><real>2.0</real>", true},
        {"<key>globalstate</key><integer>4294967298</integer>", false},
        {"<key>globalstate</key><string>2</string>", false},
        {"<key>other</key><integer>2</integer>", false},
        {"<key>globalstate</key>", false},
        {"<broken", false},
    };
    for (const auto& one : cases) {
        machine.dictionary = one.dictionary;
        EXPECT_EQ(cFirewall::IsTCPPortFirewalled(7272), one.blocked) << one.dictionary;
    }
}

} // namespace
