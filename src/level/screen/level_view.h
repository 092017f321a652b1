// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QPainter>
#include <QTimer>
#include <QWidget>
#include <functional>

#include "level_display.h"
#include "tone_player.h"

namespace m47::level {

/// The level, C/N or MER over the whole screen of the desktop, for work on the roof. It shows the
/// measurements that the real-time screen makes and starts none itself: Space asks for what is
/// shown alone, again and again. Q shows the next quantity, T turns the tone on and off, C the
/// chime of a new peak, P forgets the peak, Esc leaves. All of that is taken while the meter is
/// waited for, too.
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
    /// The level is repeated alone from now on, or no longer.
    void repeats(bool on);
    bool repeating() const { return display_.repeating(); }
    /// Shows that a value has grown old, or none has come yet, while the next one is waited for.
    void grows_old();

    void open();
    void set_tone(bool on);
    void set_chime(bool on);
    /// What is shown, and what is to be repeated.
    measurement::Quantity quantity() const { return display_.quantity(); }
    /// Shows `quantity`: level, C/N or MER. What is repeated is asked for anew.
    void show_quantity(measurement::Quantity quantity);
    /// Shows `text` in place of the keys; empty shows them again.
    void set_remark(const QString& text);

  Q_SIGNALS:
    /// The user wants the level alone to be repeated, or no longer.
    void repeat_asked(bool on);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    double now() const { return static_cast<double>(clock_.elapsed()) / 1000; }
    QString hint() const;
    void refresh();
    void speak(const LevelPicture& shown);
    void sound();
    void ring();
    bool open_sound();
    void next_quantity();
    void paint_level(QPainter& painter, const LevelPicture& shown);
    void paint_distances(QPainter& painter, const LevelPicture& shown);
    void paint_bar(QPainter& painter, const LevelPicture& shown);
    void paint_rest(QPainter& painter, const LevelPicture& shown);

    const Texts& texts_;
    std::function<bool()> linked_;
    LevelDisplay display_;
    QElapsedTimer clock_;
    QElapsedTimer since_tone_;
    QElapsedTimer since_chime_;
    QTimer ageing_;
    TonePlayer player_;
    bool tone_ = false;
    bool chime_ = false;
    bool was_live_ = false;
    QString age_;  ///< as it stands on the screen
    bool told_of_no_device_ = false;
    QString remark_;
};

}  // namespace m47::level
