#include "Firewalls.h"

#include <gmock/gmock.h>

#include "TestFolder.h"

namespace {

using host::Incoming;

constexpr int kPort = 7272;

/// The files of a machine, in a fresh folder.
class FirewallsTest : public testing::Test {
  protected:
    void WriteUfw(const std::string& enabled, const std::string& policy, const std::string& rules) const {
        fRoot.Write("usr/sbin/ufw", "");
        fRoot.Write("etc/ufw/ufw.conf", "# ENABLED=no\nENABLED=" + enabled + "\nLOGLEVEL=low\n");
        fRoot.Write("etc/default/ufw", "IPV6=yes\nDEFAULT_INPUT_POLICY=\"" + policy + "\"\n");
        fRoot.Write("etc/ufw/user.rules",
                    "*filter\n### RULES ###\n" + rules + "\n### END RULES ###\nCOMMIT\n");
    }
    void WriteZone(const std::string& attributes, const std::string& elements) const {
        fRoot.Write("etc/firewalld/zones/home.xml", "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<zone" +
                                                        attributes + ">\n<short>Home</short>\n" + elements +
                                                        "\n</zone>\n");
    }

    TestFolder fRoot;
};

TEST_F(FirewallsTest, UfwRulesDecideInTheirOrder) {
    const std::string any = " 0.0.0.0/0 any 0.0.0.0/0 in";
    const std::string start = "### tuple ### ";
    const struct {
        std::string rules;
        Incoming incoming;
    } cases[] = {
        {"", Incoming::kRefused},
        {start + "allow tcp 7272" + any, Incoming::kAllowed},
        {start + "allow_log any 22,7000:7300" + any + " comment=6162", Incoming::kAllowed},
        {start + "limit tcp any 0.0.0.0/0 any 10.0.0.0/8 in_eth0", Incoming::kAllowed},
        {start + "allow tcp 7272 0.0.0.0/0 any 0.0.0.0/0 Glass%20Pane - in", Incoming::kAllowed},
        {start + "allow udp 7272" + any, Incoming::kRefused},
        {start + "allow tcp 17272" + any, Incoming::kRefused},
        {start + "allow tcp 7272 0.0.0.0/0 any 0.0.0.0/0 out", Incoming::kRefused},
        {start + "route:allow tcp 7272" + any, Incoming::kRefused},
        {start + "deny tcp 7272" + any + "\n" + start + "allow tcp 7272" + any, Incoming::kRefused},
        {start + "deny tcp 7272 0.0.0.0/0 any 10.0.0.1 in\n" + start + "allow tcp 7272" + any,
         Incoming::kAllowed},
        {start + "allow", Incoming::kRefused},
    };
    for (const auto& one : cases) {
        WriteUfw("yes", "DROP", one.rules);
        EXPECT_EQ(host::IncomingByUfw(kPort, fRoot.Path()), one.incoming) << one.rules;
    }
    WriteUfw("yes", "ACCEPT", start + "reject any 7272" + any);
    EXPECT_EQ(host::IncomingByUfw(kPort, fRoot.Path()), Incoming::kRefused);
    WriteUfw("yes", "ACCEPT", "");
    EXPECT_EQ(host::IncomingByUfw(kPort, fRoot.Path()), Incoming::kAllowed);
}

TEST_F(FirewallsTest, FirewalldZonesOpenPorts) {
    fRoot.Write("proc/1/comm", "systemd\n");
    fRoot.Write("proc/42/comm", "firewalld\n");
    fRoot.Write("etc/firewalld/firewalld.conf", "# zones\nDefaultZone=home\n");
    fRoot.Write("usr/lib/firewalld/zones/home.xml", "<zone><port port=\"7272\" protocol=\"tcp\"/></zone>");
    fRoot.Write("usr/lib/firewalld/services/inner.xml",
                "<service><port protocol=\"tcp\" port=\"7272\"/></service>");
    fRoot.Write("usr/lib/firewalld/services/outer.xml", "<service><include service=\"inner\"/></service>");
    fRoot.Write("usr/lib/firewalld/services/loop.xml", "<service><include service=\"loop\"/></service>");
    EXPECT_EQ(host::IncomingByFirewalld(kPort, fRoot.Path()), Incoming::kAllowed)
        << "by the zone that came with it";
    const struct {
        const char* attributes;
        const char* elements;
        Incoming incoming;
    } cases[] = {
        {"", "<service name=\"loop\"/><service name=\"missing\"/>", Incoming::kRefused},
        {" target=\"DROP\"", "", Incoming::kRefused},
        {" target=\"ACCEPT\"", "", Incoming::kAllowed},
        {"", "<port port=\"7000-7300\" protocol=\"tcp\"/>", Incoming::kAllowed},
        {"", "<port port=\"7272\" protocol=\"udp\"/>", Incoming::kRefused},
        {"", "<service name=\"outer\"/>", Incoming::kAllowed},
        {"", "<rule><source address=\"10.0.0.0/8\"/><accept/></rule>", Incoming::kAllowed},
        {"", "<rule><port port=\"22\" protocol=\"tcp\"/><accept/></rule>", Incoming::kRefused},
        {"", "<rule><port port=\"7272\" protocol=\"tcp\"/><drop/></rule>", Incoming::kRefused},
    };
    for (const auto& one : cases) {
        WriteZone(one.attributes, one.elements);
        EXPECT_EQ(host::IncomingByFirewalld(kPort, fRoot.Path()), one.incoming)
            << one.attributes << one.elements;
    }
    fRoot.Write("etc/firewalld/zones/studio.xml", "<zone target=\"ACCEPT\"></zone>");
    EXPECT_EQ(host::IncomingByFirewalld(kPort, fRoot.Path()), Incoming::kRefused)
        << "nothing comes to that zone";
    fRoot.Write("etc/firewalld/zones/studio.xml",
                "<zone target=\"ACCEPT\"><interface name=\"eth1\"/></zone>");
    EXPECT_EQ(host::IncomingByFirewalld(kPort, fRoot.Path()), Incoming::kAllowed);
}

TEST_F(FirewallsTest, PresentsOneStateAndKeepsSilentWhereItIsUnknown) {
    using testing::HasSubstr;
    const std::string off = "<key>globalstate</key><integer>0</integer>";
    const std::string refused = "<key>globalstate</key><integer>2</integer>";
    EXPECT_THAT(host::FirewallPreferenceText(kPort, fRoot.Path()), HasSubstr(off)) << "no firewall at all";
    fRoot.Write("proc/42/comm", "firewalld\n");
    EXPECT_EQ(host::FirewallPreferenceText(kPort, fRoot.Path()), "") << "its settings can't be read";
    WriteUfw("yes", "DROP", "");
    EXPECT_THAT(host::FirewallPreferenceText(kPort, fRoot.Path()), HasSubstr(refused))
        << "one of them is enough";
    std::filesystem::remove_all(fRoot / "proc");
    std::filesystem::remove(fRoot / "etc/ufw/user.rules");
    EXPECT_EQ(host::FirewallPreferenceText(kPort, fRoot.Path()), "");
    WriteUfw("no", "DROP", "");
    EXPECT_THAT(host::FirewallPreferenceText(kPort, fRoot.Path()), HasSubstr(off));
}

} // namespace
