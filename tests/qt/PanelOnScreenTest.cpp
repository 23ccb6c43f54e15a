// The panel as a user meets it: a real X server, a window manager, the mouse and the keyboard.

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QtTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "Await.h"
#include "HostLoader.h"
#include "Program.h"
#include "QtHost.h"
#include "QtUserInterface.h"
#include "TestClient.h"
#include "XServer.h"
#include "XWindows.h"
#include "cHttpServer.h"
#include "vnController.h"

namespace {

constexpr int kBound = 20'000; // Milliseconds that anything may take.

void keep_picture(const QPixmap& picture, const std::string& name) {
    QDir().mkpath(SCREENSHOTS);
    EXPECT_TRUE(picture.save(QString::fromStdString(std::string(SCREENSHOTS "/") + name + ".png")));
}

/// A program's whole run inside a test: display, window manager, application, controller.
class PanelOnScreen {
  public:
    explicit PanelOnScreen(const std::string& screen = "1280x800x24") : server(screen) {
        if (!server.Running())
            return;
        setenv("DISPLAY", server.Display().c_str(), 1);
        setenv("QT_QPA_PLATFORM", "xcb", 1);
        unsetenv("LANGUAGE");
        setenv("LC_ALL", "en_US.UTF-8", 1);
        manager = server.StartManager();
        EXPECT_NE(manager, nullptr) << "is openbox installed?";
        windows = std::make_unique<XWindows>(server.Display());
        application = std::make_unique<QApplication>(fArgumentCount, fArguments);
        QApplication::setQuitOnLastWindowClosed(false);
        std::string reason;
        machine = HostLoader::Load(HostLoader::Choice::kX11, server.Display(), reason);
        host = std::make_unique<host::QtHost>(*machine);
        scope = std::make_unique<host::HostScope>(*host);
        interface = std::make_unique<host::QtUserInterface>("Glasspane");
        controller = std::make_unique<vnController>(
            *interface, vnController::Settings{.port = 0, .bindAddress = "127.0.0.1"});
        EXPECT_TRUE(controller->applicationDidFinishLaunching());
        EXPECT_TRUE(QTest::qWaitForWindowActive(&Window(), kBound));
        EXPECT_EQ(controller->Server()->WaitUntilListening(), 0);
    }

    QMainWindow& Window() { return interface->PanelWindow().Window(); }
    template <typename Widget>
    Widget* Find(const char* name) {
        auto* found = Window().findChild<Widget*>(name);
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    void Choose(const char* popup, int downs) {
        QTest::keyClick(Find<QComboBox>(popup), Qt::Key_Home);
        for (int i = 0; i < downs; ++i)
            QTest::keyClick(Find<QComboBox>(popup), Qt::Key_Down);
        Settle();
    }
    /// Until the rows have slid to where they stay.
    void Settle() {
        int height = -1;
        EXPECT_TRUE(QTest::qWaitFor(
            [&] {
                QTest::qWait(60);
                return std::exchange(height, Window().height()) == Window().height();
            },
            kBound));
    }
    void KeepPicture(const std::string& name) { keep_picture(Window().grab(), name); }

    /// What a client is told of the picture's size, as in "800x600".
    std::string Served() {
        const auto reply = TestClient(controller->Server()->Port()).Call("Snapshot_MaximumRect");
        std::string numbers;
        for (size_t at = 0; reply && (at = reply->body.find("<int>", at)) != std::string::npos; at += 5)
            numbers += (numbers.empty() ? "" : "x") +
                       reply->body.substr(at + 5, reply->body.find('<', at + 5) - at - 5);
        return numbers;
    }

    XServer server;
    std::unique_ptr<Program> manager;
    std::unique_ptr<XWindows> windows;
    std::unique_ptr<QApplication> application;
    std::unique_ptr<host::Host> machine;
    std::unique_ptr<host::QtHost> host;
    std::unique_ptr<host::HostScope> scope;
    std::unique_ptr<host::QtUserInterface> interface;
    std::unique_ptr<vnController> controller;

  private:
    int fArgumentCount = 1;
    char fName[10] = "glasspane";
    char* fArguments[2] = {fName, nullptr};
};

TEST(PanelOnScreenTest, LetsTheUserChooseWhatIsServed) {
    PanelOnScreen screen;
    if (!screen.server.Running())
        SKIP_OR_FAIL(screen.server.WhyNot());
    const int height = screen.Window().height();
    EXPECT_EQ(screen.Served(), "1280x800");
    screen.KeepPicture("panel-full-screen");

    screen.Choose("fSelectPopup", 2);
    EXPECT_EQ(screen.Served(), "800x600");
    EXPECT_EQ(screen.Window().height(), height);
    const QPoint topLeft = screen.Window().pos(); // The manager has placed it by now.

    screen.Choose("fSelectPopup", 4);
    EXPECT_TRUE(QTest::qWaitFor([&] { return screen.Window().height() >= height + 30; }, kBound))
        << "a row slides open";
    EXPECT_EQ(screen.Window().pos(), topLeft);
    screen.KeepPicture("panel-custom-size");
    auto* width = screen.Find<QLineEdit>("widthTextField");
    QTest::mouseClick(width, Qt::LeftButton);
    width->selectAll();
    QTest::keyClicks(width, "400");
    QTest::keyClick(width, Qt::Key_Tab);
    EXPECT_EQ(screen.Served(), "400x800");
    EXPECT_TRUE(screen.Find<QLineEdit>("heightTextField")->hasFocus());
    QTest::keyClicks(screen.Find<QLineEdit>("heightTextField"), "0\r");
    screen.Settle();
    EXPECT_EQ(screen.Find<QLineEdit>("heightTextField")->text(), "800") << "shows what it became";

    QTest::mouseClick(screen.Find<QPushButton>("muteButton"), Qt::LeftButton);
    screen.Settle();
    EXPECT_FALSE(width->isEnabled());
    EXPECT_EQ(screen.Find<QPushButton>("muteButton")->text(), "Resume");
    screen.KeepPicture("panel-paused");
    QTest::mouseClick(screen.Find<QPushButton>("muteButton"), Qt::LeftButton);
    screen.Settle();
    EXPECT_TRUE(width->isEnabled());

    for (const char* name : {"fDevicePopup", "fSelectPopup", "widthTextField", "heightTextField"})
        EXPECT_FALSE(screen.Window().findChild<QWidget*>(name)->accessibleName().isEmpty()) << name;

    bool ended = false;
    QObject::connect(qApp, &QApplication::aboutToQuit, qApp, [&] { ended = true; });
    QTimer::singleShot(0, &screen.Window(), [&] { screen.Window().close(); });
    screen.host->RunLoopPort().Run();
    EXPECT_TRUE(ended) << "closing the panel quits";
    screen.controller.reset();
}

TEST(PanelOnScreenTest, LetsTheUserDrawARegion) {
    PanelOnScreen screen;
    if (!screen.server.Running())
        SKIP_OR_FAIL(screen.server.WhyNot());
    screen.Choose("fSelectPopup", 1);
    screen.KeepPicture("panel-region");
    QTest::mouseClick(screen.Find<QPushButton>("selectRegionButton"), Qt::LeftButton);
    QWidget* overlay = nullptr;
    const auto find_overlay = [&] {
        for (QWidget* widget : QApplication::topLevelWidgets())
            overlay = widget->objectName() == "regionSelector" && widget->isVisible() ? widget : overlay;
        return overlay != nullptr;
    };
    ASSERT_TRUE(QTest::qWaitFor(find_overlay, kBound));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(overlay, kBound));
    QTest::qWait(700); // The fade: only the picture needs it.
    EXPECT_EQ(overlay->geometry(), QRect(0, 0, 1280, 800));

    // The region is 800 by 600 in the middle: its right edge goes to 940, its lower edge to 600.
    const auto drag = [&](QPoint from, QPoint to) {
        QTest::mousePress(overlay, Qt::LeftButton, Qt::NoModifier, from);
        for (const QPoint place : {(from + to) / 2, to}) {
            QMouseEvent move(QEvent::MouseMove, place, overlay->mapToGlobal(place), Qt::NoButton,
                             Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(overlay, &move);
        }
        QTest::mouseRelease(overlay, Qt::LeftButton, Qt::NoModifier, to);
    };
    drag({1040, 700}, {940, 600});
    drag({500, 300}, {400, 250});
    QTest::mouseMove(overlay, {840, 550});
    keep_picture(QGuiApplication::primaryScreen()->grabWindow(0), "overlay");
    QTest::keyClick(overlay, Qt::Key_Return);
    EXPECT_EQ(screen.Served(), "700x500");
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return screen.Find<QPushButton>("selectRegionButton")->isEnabled(); }, kBound));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !screen.controller->RegionSelector()->IsShown(); }, kBound));

    const auto reply = TestClient(screen.controller->Server()->Port()).Call("Snapshot");
    ASSERT_TRUE(reply);
    EXPECT_THAT(reply->body, testing::HasSubstr("rect=\"140,50,839,549\""));
}

TEST(PanelOnScreenTest, OffersWindowsInTheStatusMenu) {
    PanelOnScreen screen;
    if (!screen.server.Running())
        SKIP_OR_FAIL(screen.server.WhyNot());
    const xcb_window_t window = screen.windows->Open(300, 200, 320, 240);
    screen.windows->SetText(window, "_NET_WM_NAME", "UTF8_STRING", "A & B");
    screen.windows->SetText(window, "WM_CLASS", "STRING", std::string("painter\0Painter\0", 16));
    screen.windows->Show(window);

    // As the panel lists applications, so does the menu.
    QAction* entry = nullptr;
    const auto find_entry = [&] {
        screen.Choose("fDevicePopup", 1);
        screen.interface->StatusItemMenu().popup({600, 300});
        for (const QMenu* submenu : screen.interface->StatusItemMenu().findChildren<QMenu*>()) {
            for (QAction* action : submenu->actions())
                entry = action->text() == "A && B" ? action : entry;
        }
        keep_picture(screen.interface->StatusItemMenu().grab(), "status-menu");
        screen.interface->StatusItemMenu().close();
        return entry != nullptr;
    };
    ASSERT_TRUE(QTest::qWaitFor(find_entry, kBound));
    entry->trigger();
    screen.Settle();
    screen.KeepPicture("panel-window");
    const xcb_rectangle_t outline = screen.windows->Outline(screen.windows->TopLevel(window));
    EXPECT_EQ(screen.Served(), std::to_string(outline.width) + "x" + std::to_string(outline.height));
    EXPECT_EQ(screen.Find<QComboBox>("fWindowPopup")->currentText(), "A & B");
}

/// Without a display, which a panel's looks don't need.
TEST(PanelTest, ReadsWellInAllLanguages) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("QT_SCALE_FACTOR", "2", 1); // Crisp pictures to look at.
    int argumentCount = 1;
    char name[] = "glasspane";
    char* arguments[] = {name, nullptr};
    QApplication application(argumentCount, arguments);
    std::string reason;
    const auto machine = HostLoader::Load(HostLoader::Choice::kBuiltin, "", reason);
    host::QtHost host(*machine);
    host::HostScope scope(host);
    unsetenv("LANGUAGE");
    for (const std::string language : {"cs", "de", "en", "es", "fr", "he", "it", "ja", "nl", "pt_BR", "sv"}) {
        setenv("LC_ALL", (language + ".UTF-8").c_str(), 1);
        if (language == "de") // On a dark desktop, too.
            QApplication::setPalette(QPalette(QColor(53, 53, 53), QColor(35, 35, 35)));
        host::QtUserInterface interface("Glasspane");
        vnController controller(interface, {.port = 0, .bindAddress = "127.0.0.1", .showPanel = false});
        ASSERT_TRUE(controller.applicationDidFinishLaunching());
        interface.Panel().Choose(vnControl::fSelectPopup, 4);
        interface.ShowPanel();
        QMainWindow& window = interface.PanelWindow().Window();
        for (const QLabel* label : window.findChildren<QLabel*>()) {
            EXPECT_TRUE(!label->isVisible() || label->width() >= label->sizeHint().width())
                << language << ": " << label->text().toStdString();
        }
        EXPECT_EQ(window.layoutDirection() == Qt::RightToLeft, language == "he");
        keep_picture(window.grab(), "panel-" + language);
        QApplication::setPalette(QPalette());
    }
    unsetenv("QT_SCALE_FACTOR");
}

/// The program itself, on a display of its own.
class ProgramOnScreenTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!server.Running())
            SKIP_OR_FAIL(server.WhyNot());
    }
    std::vector<std::string> Command(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(),
                         {GLASSPANE, "--bind", "127.0.0.1", "--port", std::to_string(port)});
        return arguments;
    }
    std::vector<std::string> Environment() { return {"DISPLAY=" + server.Display(), "QT_QPA_PLATFORM=xcb"}; }
    /// A call that comes before the services are up gets no answer.
    bool Answers() {
        return Await([this] { return TestClient(port, 1000).Call("CheckConnection").has_value(); });
    }

    XServer server{"800x600x24"};
    /// Below those that the system gives away by itself.
    const uint16_t port = static_cast<uint16_t>(20'000 + getpid() % 10'000);
};

TEST_F(ProgramOnScreenTest, ServesUntilItIsToldToEnd) {
    for (const auto& arguments : {std::vector<std::string>{}, {"--minimized"}}) {
        Program glasspane(Command(arguments), Environment());
        EXPECT_TRUE(Answers());
        glasspane.Signal(SIGTERM);
        EXPECT_EQ(glasspane.WaitForExit(), 0);
    }
}

TEST_F(ProgramOnScreenTest, EndsInAnOrderlyWayWithItsXServer) {
    Program glasspane(Command({}), Environment());
    EXPECT_TRUE(Answers());
    server.Kill();
    const auto status = glasspane.WaitForExit();
    ASSERT_TRUE(status);
    EXPECT_LT(*status, 128) << "no signal ended it";
}

} // namespace
