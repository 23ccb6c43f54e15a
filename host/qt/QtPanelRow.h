#pragma once

#include <QVariantAnimation>
#include <QWidget>

class QHBoxLayout;

namespace host {

/// A row of the panel that slides open and shut: its height is animated, and the window follows.
class QtPanelRow : public QWidget {
  public:
    explicit QtPanelRow(QWidget* parent);

    /// The widgets from left to right (from right to left where the language is read so).
    QHBoxLayout& Line() { return *fLine; }

    /// Fixes the height, when all widgets are in.
    void Finish() { settle(); }

    /// Slides while it can be seen, and changes at once otherwise.
    void SetShown(bool shown);

  private:
    int full_height() const;
    void settle();

    QHBoxLayout* fLine;
    QVariantAnimation fSlide;
    bool fIsShown = true;
};

} // namespace host
