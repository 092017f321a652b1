// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QBoxLayout>
#include <QDialog>
#include <QPushButton>
#include <functional>

#include "texts.h"

namespace m47 {

/// A dialog in which something runs over the line for a while. Meanwhile its key Stop, Esc and
/// closing any window stop that; a window that was closed closes behind its end.
class RunDialog : public QDialog {
    Q_OBJECT
  public:
    RunDialog(const Texts& texts, QWidget* parent) : QDialog(parent), run_texts_(texts) {}

    /// Shows that it runs, or that it does not.
    void show_running(bool running);

    bool eventFilter(QObject* watched, QEvent* event) override;

  public Q_SLOTS:
    void reject() override;

  protected:
    /// A key of that name and caption, at the end of `keys`.
    QPushButton* add_key(QBoxLayout* keys, const char* name, const Bilingual& caption);
    /// The keys that end the run, and the dialog; called once.
    void join_ends(QPushButton* stop, QPushButton* close);
    /// `body` while it runs; however that ends, the dialog can be used and left again.
    void run(const std::function<void()>& body);
    /// What a handler does that may run(): leaves the dialog behind it where it was told to close.
    void leave_if_told();
    bool running() const { return running_; }

    /// Something runs from now on, or no longer: what can be pressed depends on it.
    virtual void enable(bool running) = 0;
    /// Tells what runs to stop. Nothing may be sent from here: it comes in the middle of an
    /// exchange.
    virtual void stop_run() = 0;

  private:
    void stop();

    const Texts& run_texts_;
    QPushButton* stop_ = nullptr;
    QPushButton* close_ = nullptr;
    QAction* escape_ = nullptr;
    bool running_ = false;
    bool leave_ = false;  ///< a window was told to close while it ran
};

}  // namespace m47
