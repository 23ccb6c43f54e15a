// The client against a server that nobody here wrote: the ordinary cases, redirects, authentication.

#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Await.h"
#include "Program.h"
#include "SkipOrFail.h"
#include "TestFolder.h"
#include "cHttpSession.h"
#include "zBuffer.h"

namespace {

constexpr double kTimeout = 60; // Seconds.

int free_port() {
    const int any = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    socklen_t size = sizeof address;
    bind(any, reinterpret_cast<sockaddr*>(&address), size);
    getsockname(any, reinterpret_cast<sockaddr*>(&address), &size);
    close(any);
    return ntohs(address.sin_port);
}

/// Apache with a few files, in a fresh folder.
class Apache {
  public:
    Apache() : fPort(free_port()) {
        std::filesystem::permissions(fFolder.Path(), std::filesystem::perms(0755)); // For its own user.
        fFolder.Write("www/large.bin", std::string(kLarge, 'x'));
        fFolder.Write("www/secret/index.html", "known");
        fFolder.Write("users", "user:{SHA}nU4eI71bcnBGqeO0t9tXvY1u5oQ=\n"); // The SHA-1 of "pass".
        write_configuration();
        fProgram = std::make_unique<Program>(
            ServerCommand("/usr/sbin/apache2 -DFOREGROUND -f " + (fFolder / "httpd.conf").string()));
    }
    ~Apache() {
        fProgram->Signal(SIGTERM);
        fProgram->WaitForExit();
    }

    std::string URL(const std::string& path) const {
        return "http://127.0.0.1:" + std::to_string(fPort) + path;
    }
    static constexpr size_t kLarge = 3 << 20;

  private:
    void write_configuration() const {
        std::ofstream file(fFolder / "httpd.conf");
        for (const char* module : {"mpm_event", "authn_core", "authn_file", "authz_core", "authz_user",
                                   "auth_basic", "mime", "dir"})
            file << "LoadModule " << module << "_module /usr/lib/apache2/modules/mod_" << module << ".so\n";
        file << "Define folder " << fFolder.Path().string() << "\nListen 127.0.0.1:" << fPort
             << "\nServerName localhost\nUser www-data\nGroup www-data\nServerRoot ${folder}\n"
                "DefaultRuntimeDir ${folder}\nPidFile ${folder}/pid\nErrorLog ${folder}/error\n"
                "DocumentRoot ${folder}/www\nTypesConfig /dev/null\nAddType text/html .html\n"
                "KeepAlive On\n"
                "<Directory ${folder}/www/secret>\nAuthType Basic\nAuthName test\n"
                "AuthUserFile ${folder}/users\nRequire valid-user\n</Directory>\n";
    }

    TestFolder fFolder;
    int fPort;
    std::unique_ptr<Program> fProgram;
};

/// One whole request; the result of the response.
int get(cHttpSession& session, const std::string& url, zBuffer& response) {
    session.Configure(cHttpSession::kGet, url.c_str(), kTimeout);
    const int begun = session.Request_Begin(&response, nullptr, nullptr, 0);
    if (begun != 0)
        return begun;
    session.Request_BlockUntilComplete();
    return session.Response_StatusCode(nullptr);
}

TEST(RealServerTest, OrdinaryRequests) {
    if (!std::filesystem::exists("/usr/sbin/apache2")) {
        SKIP_OR_FAIL("apache2-bin is not installed");
    }
    const Apache server;
    zBuffer response;
    ASSERT_TRUE(Await([&] {
        const std::unique_ptr<cHttpSession> visitor(cHttpSession::Factory());
        return get(*visitor, server.URL("/none"), response) == -29404;
    })) << "it doesn't come up";

    const std::unique_ptr<cHttpSession> session(cHttpSession::Factory());
    EXPECT_EQ(get(*session, server.URL("/large.bin"), response), 0);
    EXPECT_EQ(response.Size(), Apache::kLarge);
    unsigned int length = 0;
    EXPECT_EQ(session->Response_ContentLength(&length), 0);
    EXPECT_EQ(length, Apache::kLarge);
    zString type;
    EXPECT_EQ(session->Response_ContentType(type), -1) << "the server knows none for .bin";
    EXPECT_EQ(get(*session, server.URL("/secret/index.html"), response), -29401);
    session->SetBasicHTTPAuthentication("user", "wrong");
    EXPECT_EQ(get(*session, server.URL("/secret/"), response), -29401);
    session->SetBasicHTTPAuthentication("user", "pass");
    EXPECT_EQ(get(*session, server.URL("/secret"), response), 0) << "by way of a redirect";
    EXPECT_EQ(std::string(response.Data(), response.Size()), "known");
    EXPECT_EQ(session->Response_ContentType(type), 0);
    EXPECT_STREQ(type, "text/html");
}

} // namespace
