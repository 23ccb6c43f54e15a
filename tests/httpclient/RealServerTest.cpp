// The client against a server that nobody here wrote: the ordinary cases, kept connections, authentication.

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Program.h"
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
        std::string pattern = (std::filesystem::temp_directory_path() / "glasspane-httpd-XXXXXX").string();
        fFolder = mkdtemp(pattern.data());
        std::filesystem::permissions(fFolder, std::filesystem::perms(0755)); // For its unprivileged children.
        std::filesystem::create_directories(fFolder / "www/secret");
        std::ofstream(fFolder / "www/large.bin") << std::string(kLarge, 'x');
        std::ofstream(fFolder / "www/secret/index.html") << "known";
        // The SHA-1 of "pass".
        std::ofstream(fFolder / "users") << "user:{SHA}nU4eI71bcnBGqeO0t9tXvY1u5oQ=\n";
        write_configuration();
        fProgram = std::make_unique<Program>(
            std::vector<std::string>{"setpriv", "--pdeathsig", "KILL", "/usr/sbin/apache2", "-DFOREGROUND",
                                     "-f", (fFolder / "httpd.conf").string()});
    }
    ~Apache() {
        fProgram->Signal(SIGTERM);
        fProgram->WaitForExit();
        std::filesystem::remove_all(fFolder);
    }

    std::string URL(const std::string& path) const {
        return "http://127.0.0.1:" + std::to_string(fPort) + path;
    }
    /// A line for each request but those not found, in no sure order between two connections: how many came
    /// before it on its connection, status, and user.
    std::string Log() const {
        std::ifstream file(fFolder / "access");
        std::string log;
        for (std::string line; std::getline(file, line);)
            if (line.find(" 404 ") == std::string::npos)
                log += line + '\n';
        return log;
    }

    static constexpr size_t kLarge = 3 << 20;

  private:
    void write_configuration() const {
        std::ofstream file(fFolder / "httpd.conf");
        for (const char* module : {"mpm_event", "authn_core", "authn_file", "authz_core", "authz_user",
                                   "auth_basic", "mime", "dir"})
            file << "LoadModule " << module << "_module /usr/lib/apache2/modules/mod_" << module << ".so\n";
        file << "Define folder " << fFolder.string() << "\nListen 127.0.0.1:" << fPort
             << "\nServerName localhost\nUser www-data\nGroup www-data\nServerRoot ${folder}\n"
                "DefaultRuntimeDir ${folder}\nPidFile ${folder}/pid\nErrorLog ${folder}/error\n"
                "DocumentRoot ${folder}/www\nTypesConfig /dev/null\nAddType text/html .html\n"
                "LogFormat \"%k %>s %u\" brief\nCustomLog ${folder}/access brief\nKeepAlive On\n"
                "<Directory ${folder}/www/secret>\nAuthType Basic\nAuthName test\n"
                "AuthUserFile ${folder}/users\nRequire valid-user\n</Directory>\n";
    }

    std::filesystem::path fFolder;
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

TEST(RealServerTest, OrdinaryRequestsOnOneConnection) {
    if (!std::filesystem::exists("/usr/sbin/apache2")) {
        if (getenv("CI"))
            FAIL() << "apache2-bin is not installed";
        GTEST_SKIP() << "apache2-bin is not installed";
    }
    const Apache server;
    zBuffer response;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (get(*std::unique_ptr<cHttpSession>(cHttpSession::Factory()), server.URL("/none"), response) !=
           -29404)
        ASSERT_LT(std::chrono::steady_clock::now(), end) << "it doesn't come up";

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

    const std::string requests = "0 200 -\n1 401 -\n2 401 user\n3 301 user\n4 200 user\n";
    while (server.Log().find(requests) == std::string::npos)
        ASSERT_LT(std::chrono::steady_clock::now(), end + std::chrono::seconds(20)) << server.Log();
}

} // namespace
