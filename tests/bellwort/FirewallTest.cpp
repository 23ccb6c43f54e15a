#include "cFirewall.h"

#include <gtest/gtest.h>

#include "FakeHost.h"

namespace {

/// A machine with one preference file.
class FirewalledHost : public FakeHost, private host::Desktop {
  public:
    FirewalledHost(uint32_t version, const std::string& file, const std::string& dictionary)
        : fFile(file),
          fText("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//A//DTD 1.0//EN\" "
                "\"http://a/b.dtd\">\n<plist version=\"1.0\">\n<dict>\n" +
                dictionary + "\n</dict>\n</plist>\n") {
        systemVersion = version;
    }
    host::Desktop& DesktopPort() override { return *this; }
    std::string FirewallPreferences(const std::string& path, int) override {
        return path == fFile ? fText : std::string();
    }

  private:
    std::string fFile;
    std::string fText;
};

bool is_blocked(uint32_t version, const char* file, const std::string& dictionary) {
    FirewalledHost machine(version, file, dictionary);
    const host::HostScope scope(machine);
    return cFirewall::IsTCPPortFirewalled(7272);
}

TEST(FirewallTest, StateDecidesFrom10Point5) {
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
    for (const auto& one : cases)
        EXPECT_EQ(is_blocked(0x1080, host::Desktop::kApplicationFirewallFile, one.dictionary), one.blocked)
            << one.dictionary;
    EXPECT_FALSE(is_blocked(0x1080, host::Desktop::kRuleFirewallFile, cases[2].dictionary));
}

} // namespace
