#include "zDebugReport.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <memory>
#include <string>

#include "zBuffer.h"
#include "zFileStream.h"
#include "zRecord.h"
#include "zSocket.h"
#include "zThread.h"
#include "zXML.h"

namespace {

void Fill(zDebugReport& report) {
    report.BeginReport(zDebugReport::kSegFault, "bad \"address\"");
    const zDebugReport::z_debug_meta meta{"linux", nullptr, 17};
    report.SetMetaData(&meta);
    report.NewThreadBlock(1, true, nullptr);
    report.Frame(0x1234, "f<int>");
    report.Frame(0x123456789AB, nullptr);
    report.CloseThreadBlock();
    report.NewThreadBlock(2, false, nullptr);
    report.CloseThreadBlock();
    report.EndReport();
}

constexpr char kReport[] = "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n"
                           "<debugreport error=\"seg fault\" description=\"bad &quot;address&quot;\">\n"
                           "<meta platform=\"linux\" build=\"unknown\" uptime_secs=\"17\" />\n"
                           "\t<thread id=\"1\" current=\"true\">\n"
                           "\t\t<frame pc=\"0x00001234\">f&lt;int&gt;</frame>\n"
                           "\t\t<frame pc=\"0x123456789ab\">no name found</frame>\n"
                           "\t</thread>\n"
                           "\t<thread id=\"2\" current=\"false\">\n"
                           "\t</thread>\n"
                           "</debugreport>";

std::string OnDisk(zDebugReport& report) {
    zString path;
    EXPECT_EQ(zFileStream::CreateTemporaryFile(
                  path, ("glasspane_report_" + std::to_string(getpid()) + "_%ld").c_str()),
              0);
    EXPECT_EQ(report.WriteToDisk(path), 0);
    zBuffer bytes;
    EXPECT_EQ(zFileStream::ReadEntireFile(path, bytes), 0);
    zFileStream::RemoveFile(path);
    return std::string(bytes.Data(), bytes.Size());
}

/// Takes one connection and all that comes through it.
class Receiver : public zThreadMain {
  public:
    explicit Receiver(zSocket& listener) : fListener(listener) {}
    int Main(int, const char**) override {
        bool readable = false;
        zSocket* accepted = nullptr;
        if (fListener.SelectRead(20'000, &readable) != 0 || fListener.Accept(&accepted, 0) != 0)
            return -1;
        const std::unique_ptr<zSocket> socket(accepted);
        char bytes[512];
        int got = 0;
        while (socket->SelectRead(20'000, &readable) == 0 &&
               socket->ReceivePending(bytes, sizeof bytes, &got) == 0 && got > 0)
            received.append(bytes, static_cast<size_t>(got));
        return 0;
    }

    std::string received;

  private:
    zSocket& fListener;
};

} // namespace

TEST(DebugReport, IsXmlThatTellsThreadsAndFrames) {
    zDebugReport report;
    Fill(report);
    report.PrintToConsole();
    EXPECT_EQ(OnDisk(report), kReport);
    EXPECT_EQ(OnDisk(report), kReport) << "a second time too";
    zRecord root;
    EXPECT_EQ(zXML::ParseBuffer(zXML::kAll, &root, kReport, -1), 0);
    EXPECT_EQ(report.WriteToDisk("/nowhere/report"), -1);
}

TEST(DebugReport, NamesTheFault) {
    const std::pair<int, const char*> kFaults[] = {
        {1, "assertion"}, {2, "seg fault"}, {4, "okay"}, {3, "unknown fault"}};
    for (const auto& [type, text] : kFaults) {
        zDebugReport report;
        report.BeginReport(static_cast<zDebugReport::z_fault_type>(type), nullptr);
        EXPECT_NE(OnDisk(report).find("error=\"" + std::string(text) + "\" description=\"unknown\""),
                  std::string::npos);
    }
}

TEST(DebugReport, ALongNameIsCut) {
    zDebugReport report;
    report.Frame(1, std::string(5000, 'n').c_str());
    const std::string text = OnDisk(report);
    const auto start = text.find("\">") + 2;
    EXPECT_EQ(text.find("</frame>\n") - start, 1023u);
}

TEST(DebugReport, GoesOnlyWhereAProgramSendsIt) {
    zDebugReport report;
    Fill(report);
    EXPECT_EQ(report.TransmitToServer(), -1) << "there is no server";

    const std::unique_ptr<zSocket> listener(zSocket::Factory());
    listener->Create(0);
    ASSERT_EQ(listener->Bind(0, "127.0.0.1"), 0);
    ASSERT_EQ(listener->Listen(1), 0);
    unsigned short port = 0;
    ASSERT_EQ(listener->GetLocalPort(&port), 0);
    Receiver receiver(*listener);
    const std::unique_ptr<zThread> thread(
        zThread::Factory("receiver", &receiver, 0, zThread::kNormalPriority));
    zDebugReport::SetServer("127.0.0.1", port);
    EXPECT_EQ(report.TransmitToServer(), 0);
    EXPECT_EQ(thread->WaitForExit(), 0);
    EXPECT_EQ(receiver.received, "Content-Length: " + std::to_string(sizeof kReport - 1) + "\n" + kReport);

    listener->Abort();
    zDebugReport::SetServer("127.0.0.1", port);
    EXPECT_LT(report.TransmitToServer(), 0) << "nobody listens";
    zDebugReport::SetServer(nullptr);
}
