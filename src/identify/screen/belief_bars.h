// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QWidget>
#include <vector>

namespace m47::identify {

/// What may be the answer, and how much of the belief it has.
struct Bar {
    QString name;
    double chance = 0;  ///< 0 to 1
};

/// A bar for each possible answer, with its name before it and its chance behind it, from the top
/// as they are given; a remark where there is none. As high as all of them need.
class BeliefBars : public QWidget {
    Q_OBJECT
  public:
    explicit BeliefBars(QWidget* parent = nullptr);

    void show_bars(std::vector<Bar> bars);
    /// What stands there as long as there are no bars.
    void set_remark(const QString& text);
    const std::vector<Bar>& bars() const { return bars_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    int line() const;
    int lines() const;
    int name_width() const;
    void paint_words(QPainter& painter, const QRect& name, const QRect& percent,
                     const Bar& bar) const;
    void paint_bar(QPainter& painter, const QRectF& room, double chance) const;

    std::vector<Bar> bars_;
    QString remark_;
};

}  // namespace m47::identify
