// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QScrollArea>
#include <QSplitter>

namespace m47::realtime {

/// Where the page stands: in a wide screen right of the controls, behind a splitter, and each side
/// scrolls for itself; else below them, and all of it scrolls together. Beside, the tuning stands
/// above the measures where the page would not have its room otherwise: nobody measures before the
/// frequency is in sight.
class BodySides : public QObject {
  public:
    /// From this width of the window on the page stands beside, in logical pixels.
    static constexpr int kWide = 1280;

    /// `body` scrolls over `sides`, which holds `controls` and the page; the tuning and the
    /// measures stand in `columns`, in that order. `page_width` is what the whole page needs.
    BodySides(QScrollArea* body, QSplitter* sides, QScrollArea* controls, QBoxLayout* columns,
              int page_width);

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void arrange();
    void set_beside();
    void set_below();
    void set_columns(QBoxLayout::Direction direction);
    int bar_width() const;
    int width_of_both() const;

    QScrollArea* body_;
    QSplitter* sides_;
    QScrollArea* controls_;
    QBoxLayout* columns_;
    int page_width_;
    /// The user has moved the splitter: its place is theirs.
    bool moved_ = false;
};

}  // namespace m47::realtime
