#include "TcpListeners.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "TestFolder.h"

namespace {

/// A socket that listens on a free port of the loopback address.
class Listener {
  public:
    explicit Listener(int family) : fDescriptor(socket(family, SOCK_STREAM, 0)) {
        sockaddr_in6 address = {}; // Has room for one of the other family.
        socklen_t size = sizeof address;
        address.sin6_family = static_cast<sa_family_t>(family);
        if (family == AF_INET6)
            address.sin6_addr = in6addr_loopback;
        else
            reinterpret_cast<sockaddr_in&>(address).sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        auto* name = reinterpret_cast<sockaddr*>(&address);
        if (bind(fDescriptor, name, family == AF_INET ? sizeof(sockaddr_in) : size) == 0 &&
            listen(fDescriptor, 1) == 0 && getsockname(fDescriptor, name, &size) == 0)
            fPort = ntohs(address.sin6_port); // In the same place in both.
    }
    ~Listener() { close(fDescriptor); }
    /// 0 if the machine lacks the family.
    int Port() const { return fPort; }

  private:
    int fDescriptor;
    int fPort = 0;
};

class TcpListenersTest : public testing::Test {
  protected:
    std::string Written(int port) {
        EXPECT_EQ(host::WriteTCPListeners(port, (folder / "listeners").string()), 0);
        return folder.Read("listeners");
    }

    TestFolder folder;
};

TEST_F(TcpListenersTest, FindsListenersOnExactlyThatPort) {
    int port = 0;
    {
        const Listener listener(AF_INET);
        port = listener.Port();
        EXPECT_EQ(Written(port), "tcp4 0 0 127.0.0.1." + std::to_string(port) + " *.* LISTEN\n");
        EXPECT_EQ(Written(port % 10000), "") << "the end of its number is another port";
    }
    EXPECT_EQ(Written(port), "") << "nobody listens any more";
    const Listener listener(AF_INET6);
    if (listener.Port() != 0) {
        EXPECT_EQ(Written(listener.Port()),
                  "tcp6 0 0 ::1." + std::to_string(listener.Port()) + " *.* LISTEN\n");
    }
}

TEST_F(TcpListenersTest, WritesAPrivateFileAndFollowsNoLink) {
    Written(1);
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(folder / "listeners").permissions(),
              perms::owner_read | perms::owner_write);
    const std::string link = (folder / "link").string();
    std::filesystem::create_symlink("victim", link);
    EXPECT_EQ(host::WriteTCPListeners(1, link), -1);
    EXPECT_FALSE(std::filesystem::exists(folder / "victim"));
}

} // namespace
