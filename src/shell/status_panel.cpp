// SPDX-License-Identifier: GPL-3.0-or-later
#include "status_panel.h"

#include <QApplication>
#include <QHBoxLayout>

#include "lamp.h"
#include "tooltips.h"

namespace m47::shell {

StatusPanel::StatusPanel(QWidget* parent)
    : QFrame(parent), pbar1_(new QProgressBar(this)), port_state_(new QLabel(this)) {
    setObjectName(QStringLiteral("Picture1"));
    pbar1_->setObjectName(QStringLiteral("pbar1"));
    pbar1_->setTextVisible(false);
    pbar1_->setMaximum(link::kProgressSteps);
    pbar1_->setFixedWidth(fontMetrics().averageCharWidth() * 24);
    // Its place is kept, so that the screens do not jump when it appears.
    QSizePolicy place = pbar1_->sizePolicy();
    place.setRetainSizeWhenHidden(true);
    pbar1_->setSizePolicy(place);
    pbar1_->hide();
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    port_state_->setObjectName(QStringLiteral("port_state"));
    port_state_->setTextFormat(Qt::PlainText);
    port_state_->setMargin(3);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(pbar1_);
    layout->addWidget(port_state_);
    show_state(QStringLiteral("RS232 ComPort NOT Connected"), false);
}

void StatusPanel::show_progress_bar() {
    pbar1_->show();
}

void StatusPanel::set_progress(int value) {
    pbar1_->setValue(value);
}

void StatusPanel::set_hourglass(bool on) {
    if (on == hourglass_) return;
    hourglass_ = on;
    if (on)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

void StatusPanel::set_port_state(const QString& text, bool connected) {
    show_state(text, connected);
    show_reason();
}

void StatusPanel::show_state(const QString& text, bool connected) {
    connected_ = connected;
    port_state_->setText(text);
    // Black on the exact status colour reads well in a light and in a dark palette.
    QPalette colours = port_state_->palette();
    colours.setColor(QPalette::Window, QColor::fromRgb(connected ? kGreen : kRed));
    colours.setColor(QPalette::WindowText, Qt::black);
    port_state_->setAutoFillBackground(true);
    port_state_->setPalette(colours);
}

void StatusPanel::show_reason() {
    port_state_->setToolTip(!connected_ && reason ? plain_tooltip(reason()) : QString());
}

void StatusPanel::show_simulated(const QString& text) {
    if (!simulated_) {
        if (text.isEmpty()) return;
        simulated_ = new QLabel(this);
        simulated_->setObjectName(QStringLiteral("simulated_meter"));
        static_cast<QHBoxLayout*>(layout())->insertWidget(1, simulated_);
    }
    simulated_->setText(text);
    simulated_->setVisible(!text.isEmpty());
}

void StatusPanel::show_recording(const QString& text) {
    if (!recording_) {
        if (text.isEmpty()) return;
        recording_ = new RecordingMark(this);
        static_cast<QHBoxLayout*>(layout())->insertWidget(1, recording_);
    }
    recording_->setToolTip(plain_tooltip(text));
    recording_->setAccessibleName(text);
    recording_->setVisible(!text.isEmpty());
}

void StatusPanel::pump() {
    pump_.pump();
}

}  // namespace m47::shell
