#include "zDebugReport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "TestFolder.h"
#include "zSocket.h"
#include "zString.h"

namespace {

constexpr char kReport[] = "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n"
                           "<debugreport error=\"seg fault\" description=\"bad &quot;address&quot;\">\n"
                           "<meta platform=\"linux\" build=\"unknown\" uptime_secs=\"17\" />\n"
                           "\t<thread id=\"1\" current=\"true\">\n"
                           "\t\t<frame pc=\"0x00001234\">f&lt;int&gt;</frame>\n"
                           "\t\t<frame pc=\"0x123456789ab\">no name found</frame>\n"
                           "\t</thread>\n"
                           "</debugreport>";

class DebugReport : public testing::Test {
  protected:
    DebugReport() {
        fReport.BeginReport(zDebugReport::kSegFault, "bad \"address\"");
        const zDebugReport::z_debug_meta meta{"linux", nullptr, 17};
        fReport.SetMetaData(&meta);
        fReport.NewThreadBlock(1, true, nullptr);
        fReport.Frame(0x1234, "f<int>");
        fReport.Frame(0x123456789AB, nullptr);
        fReport.CloseThreadBlock();
        fReport.EndReport();
    }
    static std::string OnDisk(zDebugReport& report) {
        const TestFolder folder;
        EXPECT_EQ(report.WriteToDisk((folder / "report").c_str()), 0);
        return folder.Read("report");
    }

    zDebugReport fReport;
};

} // namespace

TEST_F(DebugReport, IsXmlThatTellsThreadsAndFrames) {
    fReport.PrintToConsole();
    EXPECT_EQ(OnDisk(fReport), kReport);
    EXPECT_EQ(OnDisk(fReport), kReport) << "a second time too";
    EXPECT_EQ(fReport.WriteToDisk("/nowhere/report"), -1);
}

TEST_F(DebugReport, ALongNameIsCut) {
    zDebugReport report;
    report.Frame(1, std::string(5000, 'n').c_str());
    const std::string text = OnDisk(report);
    const auto start = text.find("\">") + 2;
    EXPECT_EQ(text.find("</frame>\n") - start, 1023u);
}

TEST_F(DebugReport, GoesOnlyWhereAProgramSendsIt) {
    EXPECT_EQ(fReport.TransmitToServer(), -1) << "there is no server";

    const std::unique_ptr<zSocket> listener(zSocket::Factory());
    listener->Create(0);
    ASSERT_EQ(listener->Bind(0, "127.0.0.1"), 0);
    ASSERT_EQ(listener->Listen(1), 0);
    unsigned short port = 0;
    ASSERT_EQ(listener->GetLocalPort(&port), 0);
    zDebugReport::SetServer("127.0.0.1", port);
    EXPECT_EQ(fReport.TransmitToServer(), 0);

    EXPECT_EQ(listener->SelectRead(20'000, nullptr), 0);
    zSocket* accepted = nullptr;
    ASSERT_EQ(listener->Accept(&accepted, 0), 0);
    const std::unique_ptr<zSocket> server(accepted);
    std::string received;
    char bytes[512];
    for (int got = 1; got > 0 && server->SelectRead(20'000, nullptr) == 0;) {
        ASSERT_EQ(server->ReceivePending(bytes, sizeof bytes, &got), 0);
        received.append(bytes, static_cast<size_t>(got));
    }
    EXPECT_EQ(received, "Content-Length: " + std::to_string(sizeof kReport - 1) + "\n" + kReport);

    listener->Abort();
    EXPECT_LT(fReport.TransmitToServer(), 0) << "nobody listens";
    zDebugReport::SetServer(nullptr);
}
