// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>
#include <functional>

#include "level_display.h"
#include "tone_player.h"

namespace m47::level {

/// The level over the whole screen of the desktop, for work on the roof. It shows the measurements
/// that the real-time screen makes and starts none itself. Esc leaves, T turns the tone on and off.
class LevelView : public QWidget {
    Q_OBJECT
    /// What could not be done, in words; empty when there is nothing.
    Q_PROPERTY(QString remark MEMBER remark_)
  public:
    /// `linked` is asked whether the meter answers; `texts` outlive the view.
    LevelView(const Texts& texts, std::function<bool()> linked, QWidget* parent);

    void measured(const measurement::Measurement& measurement);
    void begins();
    void ended();

    void open();
    void set_tone(bool on);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    double now() const { return static_cast<double>(clock_.elapsed()) / 1000; }
    QString hint() const;
    void refresh();

    const Texts& texts_;
    std::function<bool()> linked_;
    LevelDisplay display_;
    QElapsedTimer clock_;
    QTimer ageing_;
    TonePlayer player_;
    bool tone_ = false;
    bool told_of_no_device_ = false;
    QString remark_;
};

}  // namespace m47::level
