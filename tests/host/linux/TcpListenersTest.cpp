#include "TcpListeners.h"

#include <arpa/inet.h>
#include <filesystem>
#include <fstream>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gmock/gmock.h>

namespace {

/// A socket that listens on a free port.
class Listener {
  public:
    explicit Listener(int family) : fDescriptor(socket(family, SOCK_STREAM, 0)) { fPort = start(family); }
    ~Listener() { close(fDescriptor); }
    /// 0 if the machine lacks the family.
    int Port() const { return fPort; }

  private:
    int start(int family) const {
        sockaddr_in6 v6 = {};
        v6.sin6_family = AF_INET6;
        v6.sin6_addr = in6addr_loopback;
        sockaddr_in v4 = {};
        v4.sin_family = AF_INET;
        v4.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        auto* address =
            family == AF_INET ? reinterpret_cast<sockaddr*>(&v4) : reinterpret_cast<sockaddr*>(&v6);
        socklen_t size = family == AF_INET ? sizeof v4 : sizeof v6;
        if (bind(fDescriptor, address, size) != 0 || listen(fDescriptor, 1) != 0)
            return 0;
        getsockname(fDescriptor, address, &size);
        return ntohs(family == AF_INET ? v4.sin_port : v6.sin6_port);
    }

    int fDescriptor;
    int fPort;
};

class TcpListenersTest : public testing::Test {
  protected:
    TcpListenersTest() {
        std::string pattern = (std::filesystem::temp_directory_path() / "glasspane-tcp-XXXXXX").string();
        fFolder = mkdtemp(pattern.data());
        fFile = fFolder / "listeners";
    }
    ~TcpListenersTest() override { std::filesystem::remove_all(fFolder); }

    std::string Written(int port) {
        EXPECT_EQ(host::WriteTCPListeners(port, fFile.string()), 0);
        std::ifstream file(fFile);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::filesystem::path fFolder;
    std::filesystem::path fFile;
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
    EXPECT_EQ(std::filesystem::status(fFile).permissions(), perms::owner_read | perms::owner_write);
    const std::string link = (fFolder / "link").string();
    std::filesystem::create_symlink("victim", link);
    EXPECT_EQ(host::WriteTCPListeners(1, link), -1);
    EXPECT_FALSE(std::filesystem::exists(fFolder / "victim"));
}

} // namespace
