// SPDX-License-Identifier: GPL-3.0-or-later
#include "run_dialog.h"

#include <QApplication>
#include <QEvent>
#include <utility>

#include "busy_input.h"

namespace m47 {

QPushButton* RunDialog::add_key(QBoxLayout* keys, const char* name, const Bilingual& caption) {
    auto* key = new QPushButton(run_texts_.pick(caption));
    key->setObjectName(QString::fromLatin1(name));
    key->setAutoDefault(false);
    keys->addWidget(key);
    return key;
}

void RunDialog::join_ends(QPushButton* stop, QPushButton* close) {
    stop_ = stop;
    close_ = close;
    connect(stop_, &QPushButton::clicked, this, &RunDialog::stop);
    connect(close_, &QPushButton::clicked, this, &RunDialog::reject);
    // Esc comes in the middle of an exchange too.
    escape_ = new QAction(this);
    escape_->setShortcut(Qt::Key_Escape);
    addAction(escape_);
    connect(escape_, &QAction::triggered, this, &RunDialog::stop);
    act_while_busy(stop_);
    act_while_busy(escape_);
}

void RunDialog::show_running(bool running) {
    running_ = running;
    close_->setEnabled(!running);
    stop_->setEnabled(running);
    escape_->setEnabled(running);
    enable(running);
    if (running) stop_->setFocus();
}

void RunDialog::run(const std::function<void()>& body) {
    struct Running {
        explicit Running(RunDialog& running) : dialog(running) {
            dialog.show_running(true);
            qApp->installEventFilter(&dialog);
        }
        ~Running() {
            qApp->removeEventFilter(&dialog);
            dialog.show_running(false);
        }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;
        RunDialog& dialog;
    };
    leave_ = false;
    const Running running(*this);
    body();
}

void RunDialog::leave_if_told() {
    if (std::exchange(leave_, false)) reject();
}

void RunDialog::stop() {
    if (running_) stop_run();
}

void RunDialog::reject() {
    if (running_)
        stop();
    else
        QDialog::reject();
}

/// Who closes a window while it runs wants it to end.
bool RunDialog::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Close || !running_ || !watched->isWidgetType()) return false;
    leave_ = true;
    stop();
    if (watched != this) return false;
    event->ignore();
    return true;
}

}  // namespace m47
