#include "QtPanelRow.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QStyle>

namespace host {

namespace {

constexpr int kRowHeight = 30; // At least: controls of a large font need more.
constexpr int kGap = 4;        // Between the controls of rows.

} // namespace

QtPanelRow::QtPanelRow(QWidget* parent) : QWidget(parent), fLine(new QHBoxLayout(this)) {
    fLine->setContentsMargins(0, 0, 0, 0);
    fSlide.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&fSlide, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& height) { setFixedHeight(height.toInt()); });
    connect(&fSlide, &QVariantAnimation::finished, this, [this] { settle(); });
}

void QtPanelRow::SetShown(bool shown) {
    const bool wasShown = fIsShown;
    fIsShown = shown;
    const int duration = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this);
    if (!window()->isVisible() || duration == 0 || shown == wasShown) {
        if (fSlide.state() != QAbstractAnimation::Running)
            settle();
        return;
    }
    const int present = wasShown || isVisible() ? height() : 0;
    fSlide.stop();
    fSlide.setDuration(duration);
    fSlide.setStartValue(present);
    fSlide.setEndValue(shown ? full_height() : 0);
    setFixedHeight(present);
    setVisible(true);
    fSlide.start();
}

/// The state at the end of a slide.
void QtPanelRow::settle() {
    setFixedHeight(full_height());
    setVisible(fIsShown);
}

int QtPanelRow::full_height() const {
    return std::max(kRowHeight, fLine->sizeHint().height() + kGap);
}

} // namespace host
