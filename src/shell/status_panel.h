// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFrame>
#include <QLabel>
#include <QProgressBar>
#include <functional>

#include "busy_pump.h"
#include "link_view.h"
#include "recording_mark.h"

namespace m47::shell {

/// The panel `Picture1` of the main window: progress bar and link status.
class StatusPanel : public QFrame, public link::LinkView {
    Q_OBJECT
  public:
    explicit StatusPanel(QWidget* parent = nullptr);

    /// Asked for the reason whenever the status turns red, and when the language changes.
    std::function<QString()> reason;
    void show_reason();

    /// Says beside the status, in `text`, that the meter is no real one; empty where it is.
    void show_simulated(const QString& text);

    /// A red dot beside the status while the line is recorded, as `text` says; none where empty.
    void show_recording(const QString& text);

    void show_progress_bar() override;
    void set_progress(int value) override;
    void set_hourglass(bool on) override;
    void set_port_state(const QString& text, bool connected) override;
    void pump() override;
    /// True while the windows are pumped: nothing may be started then.
    bool pumping() const { return pump_.pumping(); }
    BusyPump& busy() { return pump_; }

  private:
    void show_state(const QString& text, bool connected);

    QProgressBar* pbar1_;
    QLabel* port_state_;
    QLabel* simulated_ = nullptr;         ///< made when it is needed
    RecordingMark* recording_ = nullptr;  ///< likewise
    BusyPump pump_;
    bool hourglass_ = false;
    bool connected_ = false;
};

}  // namespace m47::shell
