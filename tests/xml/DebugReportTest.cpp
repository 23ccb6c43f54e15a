#include "zDebugReport.h"

#include <gtest/gtest.h>

#include <string>

#include "TestFolder.h"

TEST(DebugReport, IsXmlThatTellsThreadsAndFrames) {
    zDebugReport report;
    report.BeginReport(zDebugReport::kSegFault, "bad \"address\"");
    const zDebugReport::z_debug_meta meta{"linux", nullptr, 17};
    report.SetMetaData(&meta);
    report.NewThreadBlock(1, true, nullptr);
    report.Frame(0x1234, "f<int>");
    report.Frame(0x123456789AB, std::string(5000, 'n').c_str());
    report.CloseThreadBlock();
    report.EndReport();

    const TestFolder folder;
    EXPECT_EQ(report.WriteToDisk((folder / "report").c_str()), 0);
    EXPECT_EQ(folder.Read("report"),
              "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n"
              "<debugreport error=\"seg fault\" description=\"bad &quot;address&quot;\">\n"
              "<meta platform=\"linux\" build=\"unknown\" uptime_secs=\"17\" />\n"
              "\t<thread id=\"1\" current=\"true\">\n"
              "\t\t<frame pc=\"0x00001234\">f&lt;int&gt;</frame>\n"
              "\t\t<frame pc=\"0x123456789ab\">" +
                  std::string(1023, 'n') +
                  "</frame>\n"
                  "\t</thread>\n"
                  "</debugreport>");
    EXPECT_EQ(report.WriteToDisk("/nowhere/report"), -1);
    EXPECT_EQ(report.TransmitToServer(), -1) << "there is no server";
}
