#include "QtRegionWindow.h"

#include <cmath>
#include <map>
#include <string>

#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>

#include "Host.h"
#include "QtText.h"
#include "vnRegionSelectorView.h"

namespace host {

namespace {

/// The first characters of the keys that the view knows.
constexpr int kEnter = 3;
constexpr int kReturn = 13;

/// A picture of the resources; kept, as the overlay draws the same ones at each movement.
const QPixmap& image_named(const std::string& name) {
    static std::map<std::string, QPixmap> images;
    QPixmap& image = images[name];
    if (image.isNull())
        image.load(QtText::FromUtf8(Host::Current().DesktopPort().ResourcePath("images/" + name + ".png")));
    return image;
}

/// Points at its centre.
QCursor cursor_from(const std::string& name) {
    const QPixmap& image = image_named(name);
    return image.isNull() ? QCursor(Qt::CrossCursor) : QCursor(image, image.width() / 2, image.height() / 2);
}

QCursor cursor_of(vnCursor cursor) {
    switch (cursor) {
    case vnCursor::kOpenHand:
        return Qt::OpenHandCursor;
    case vnCursor::kClosedHand:
        return Qt::ClosedHandCursor;
    case vnCursor::kResizeLeftRight:
        return Qt::SizeHorCursor;
    case vnCursor::kResizeUpDown:
        return Qt::SizeVerCursor;
    case vnCursor::kCornerLR:
        return cursor_from("resizeCursorLR");
    case vnCursor::kCornerRL:
        return cursor_from("resizeCursorRL");
    default:
        return Qt::ArrowCursor;
    }
}

/// The screen of the toolkit that stands for a display.
QScreen* screen_at(const Rect& frame) {
    for (QScreen* screen : QGuiApplication::screens()) {
        const QPoint origin = screen->geometry().topLeft();
        if (origin.x() == static_cast<int>(frame.x) && origin.y() == static_cast<int>(frame.y))
            return screen;
    }
    return QGuiApplication::primaryScreen();
}

/// Draws in the view's coordinates: pixels of the display, counted from its left bottom corner.
class QtCanvas : public vnCanvas {
  public:
    QtCanvas(QPainter& painter, double height, double alpha)
        : fPainter(painter), fHeight(height), fAlpha(alpha) {}

    void FillRect(const Rect& rect, double white, double alpha) override {
        const auto grey = static_cast<float>(white);
        fPainter.fillRect(flipped(rect),
                          QColor::fromRgbF(grey, grey, grey, static_cast<float>(alpha * fAlpha)));
    }
    void DrawDottedFrame(const Rect& rect) override {
        fPainter.setOpacity(fAlpha);
        fPainter.setPen(QPen(Qt::black, 1));
        const QRectF inside = flipped(rect).adjusted(0.5, 0.5, -0.5, -0.5);
        fPainter.drawRect(inside);
        QPen dots(Qt::white, 1, Qt::CustomDashLine);
        dots.setDashPattern({1, 1});
        fPainter.setPen(dots);
        fPainter.drawRect(inside);
        fPainter.setOpacity(1);
    }
    void DrawImage(const char* name, const Point& origin) override {
        const QPixmap& image = image_named(name);
        fPainter.setOpacity(fAlpha);
        fPainter.drawPixmap(QPointF(origin.x, fHeight - origin.y - image.height()), image);
        fPainter.setOpacity(1);
    }
    void DrawLabel(const Rect& rect, const char* text, double points) override {
        fPainter.setOpacity(fAlpha);
        QFont font = fPainter.font();
        font.setPixelSize(static_cast<int>(points));
        fPainter.setFont(font);
        fPainter.setPen(Qt::white);
        fPainter.drawText(flipped(rect), Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextWordWrap,
                          QString::fromUtf8(text));
        fPainter.setOpacity(1);
    }

  private:
    QRectF flipped(const Rect& rect) const {
        return {rect.x, fHeight - rect.y - rect.height, rect.width, rect.height};
    }

    QPainter& fPainter;
    const double fHeight;
    const double fAlpha; ///< Of everything, while the overlay fades.
};

} // namespace

class QtRegionWindow::Window : public QWidget {
  public:
    explicit Window(vnRegionSelectorView& view) : fView(view) {
        setObjectName("regionSelector");
        setWindowTitle("Glasspane");
        setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                       Qt::NoDropShadowWindowHint);
        setAttribute(Qt::WA_TranslucentBackground);
        setMouseTracking(true);
        setFocusPolicy(Qt::StrongFocus);
    }

    void Open(const Rect& frame) {
        QScreen* screen = screen_at(frame);
        fFrame = frame;
        fScale =
            frame.width > 0 && screen->geometry().width() > 0 ? frame.width / screen->geometry().width() : 1;
        if (!Host::Current().DisplaysPort().IsComposited())
            fBackground = screen->grabWindow(0);
        setScreen(screen);
        setGeometry(screen->geometry());
        showFullScreen(); // Above docks as well.
        raise();
        activateWindow();
        setFocus();
    }

    void SetAlpha(double alpha) {
        fAlpha = alpha;
        update();
    }

    void Redraw(const Rect& area) {
        const QRectF place(area.x / fScale, (fFrame.height - area.y - area.height) / fScale,
                           area.width / fScale, area.height / fScale);
        update(place.toAlignedRect());
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        if (fBackground.isNull())
            painter.fillRect(rect(), Qt::transparent);
        else
            painter.drawPixmap(rect(), fBackground);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.scale(1 / fScale, 1 / fScale);
        QtCanvas canvas(painter, fFrame.height, fAlpha);
        fView.Draw(canvas);
    }

    void mouseMoveEvent(QMouseEvent* event) override {
        if (event->buttons() & Qt::LeftButton)
            fView.MouseDragged(place_of(*event));
        else
            fView.MouseMoved(place_of(*event));
    }
    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton)
            fView.MouseDown(place_of(*event));
    }
    void mouseReleaseEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton)
            fView.MouseUp();
    }

    void keyPressEvent(QKeyEvent* event) override {
        const bool isEnter = event->key() == Qt::Key_Enter;
        const bool isReturn = event->key() == Qt::Key_Return;
        const QString text = event->text();
        if (event->key() == Qt::Key_Escape)
            fView.CancelOperation();
        else if (!fView.KeyDown(isEnter          ? kEnter
                                : isReturn       ? kReturn
                                : text.isEmpty() ? 0
                                                 : text[0].unicode()))
            QWidget::keyPressEvent(event);
    }

  private:
    Point place_of(const QMouseEvent& event) const {
        const QPointF place = event.position() * fScale;
        return {place.x(), fFrame.height - place.y()};
    }

    vnRegionSelectorView& fView;
    Rect fFrame;
    double fScale = 1; ///< Pixels of the display for one of the toolkit's units.
    double fAlpha = 0;
    QPixmap fBackground; ///< Null where windows are seen through.
};

QtRegionWindow::QtRegionWindow(vnRegionSelectorView& view) : fWindow(std::make_unique<Window>(view)) {}

/// A key or a click may be what ends the window, from inside its own event.
QtRegionWindow::~QtRegionWindow() {
    fWindow->hide();
    fWindow.release()->deleteLater();
}

void QtRegionWindow::Open(const host::Rect& frame) {
    fWindow->Open(frame);
}

void QtRegionWindow::SetAlpha(double alpha) {
    fWindow->SetAlpha(alpha);
}

void QtRegionWindow::Redraw(const host::Rect& area) {
    fWindow->Redraw(area);
}

void QtRegionWindow::SetCursor(vnCursor cursor) {
    fWindow->setCursor(cursor_of(cursor));
}

} // namespace host
