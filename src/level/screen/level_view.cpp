// SPDX-License-Identifier: GPL-3.0-or-later
#include "level_view.h"

#include <QKeyEvent>
#include <QPainter>
#include <chrono>

namespace m47::level {
namespace {

constexpr Bilingual kLevelTitle{"Level", "Livello"};
constexpr Bilingual kLevelHint{"Esc: back    T: tone on", "Esc: indietro    T: tono acceso"};
constexpr Bilingual kLevelHintOff{"Esc: back    T: tone off", "Esc: indietro    T: tono spento"};
constexpr Bilingual kSoundNotLoaded{"No tone: %1 is missing or damaged.",
                                    "Nessun tono: %1 manca o è danneggiato."};
constexpr Bilingual kNoSound{"There is no sound device: no tone.",
                             "Nessun dispositivo audio: nessun tono."};

// Black below and bright above can be read in the sun and in the dark, whatever the desktop's
// palette.
const QColor kLiveColour(0xFF, 0xFF, 0xFF);
const QColor kPassColour(0x40, 0xFF, 0x60);
const QColor kFailColour(0xFF, 0x60, 0x60);
const QColor kStaleColour(0x80, 0x80, 0x80);
const QColor kCaptionColour(0xE0, 0xE0, 0xE0);

QColor colour_of(LevelColour colour) {
    switch (colour) {
        case LevelColour::live:
            return kLiveColour;
        case LevelColour::pass:
            return kPassColour;
        case LevelColour::fail:
            return kFailColour;
        case LevelColour::stale:
            break;
    }
    return kStaleColour;
}

/// Draws `text` as large as `room` lets it be.
void draw_fitting(QPainter& painter, const QRectF& room, const QString& text, bool bold) {
    if (text.isEmpty()) return;
    QFont font = painter.font();
    font.setBold(bold);
    font.setPixelSize(100);
    const QFontMetricsF metrics(font);
    const double scale = qMin(room.width() / qMax(1.0, metrics.horizontalAdvance(text)),
                              room.height() / metrics.height());
    font.setPixelSize(qMax(8, static_cast<int>(100 * scale)));
    painter.setFont(font);
    painter.drawText(room, Qt::AlignCenter, text);
}

}  // namespace

LevelView::LevelView(const Texts& texts, std::function<bool()> linked, QWidget* parent)
    : QWidget(parent, Qt::Window), texts_(texts), linked_(std::move(linked)) {
    setObjectName(QStringLiteral("level_view"));
    setFocusPolicy(Qt::StrongFocus);
    setAutoFillBackground(false);
    clock_.start();
    connect(&ageing_, &QTimer::timeout, this, &LevelView::refresh);
}

void LevelView::open() {
    setWindowTitle(texts_.pick(kLevelTitle));
    ageing_.start(std::chrono::seconds(1));
    showFullScreen();
    activateWindow();
    setFocus();
    refresh();
}

void LevelView::closeEvent(QCloseEvent* event) {
    ageing_.stop();
    set_tone(false);
    QWidget::closeEvent(event);
}

void LevelView::measured(const measurement::Measurement& measurement) {
    display_.measured(measurement, now());
    refresh();
    const std::optional<double> level = display_.dbuv();
    if (isVisible() && tone_ && level) player_.play(*level);
}

void LevelView::begins() {
    display_.begins();
    refresh();
}

void LevelView::ended() {
    display_.ended();
    refresh();
}

void LevelView::refresh() {
    if (!isVisible()) return;
    const LevelPicture shown = display_.picture(now(), linked_(), texts_);
    QStringList spoken{shown.value, shown.unit, shown.verdict, shown.age};
    spoken.removeAll(QString());
    setAccessibleName(spoken.join(u' '));
    update();
}

void LevelView::set_tone(bool on) {
    if (!on) player_.close();
    tone_ = on && player_.open();
    remark_.clear();
    if (on && !tone_ && !told_of_no_device_) {
        const QString& fault = player_.fault();
        remark_ = fault.isEmpty() ? texts_.pick(kNoSound) : texts_.pick(kSoundNotLoaded).arg(fault);
        told_of_no_device_ = true;
    }
    refresh();
}

QString LevelView::hint() const {
    if (!remark_.isEmpty()) return remark_;
    return texts_.pick(tone_ ? kLevelHintOff : kLevelHint);
}

void LevelView::paintEvent(QPaintEvent*) {
    // Asked at each painting: what is painted again is never older than it says.
    const LevelPicture shown = display_.picture(now(), linked_(), texts_);
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    const double w = width();
    const double h = height();
    const double edge = w * 0.03;
    painter.setPen(kCaptionColour);
    draw_fitting(painter, {edge, h * 0.02, w - 2 * edge, h * 0.11}, shown.name, false);
    painter.setPen(colour_of(shown.colour));
    draw_fitting(painter, {edge, h * 0.14, w * 0.74 - edge, h * 0.6}, shown.value, true);
    draw_fitting(painter, {w * 0.76, h * 0.42, w * 0.21, h * 0.2}, shown.unit, false);
    draw_fitting(painter, {edge, h * 0.74, w - 2 * edge, h * 0.12}, shown.verdict, true);
    painter.setPen(shown.colour == LevelColour::stale ? kStaleColour : kCaptionColour);
    draw_fitting(painter, {edge, h * 0.86, w - 2 * edge, h * 0.07}, shown.age, false);
    painter.setPen(kCaptionColour);
    draw_fitting(painter, {edge, h * 0.94, w - 2 * edge, h * 0.045}, hint(), false);
}

void LevelView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_F11) {
        close();
    } else if (event->key() == Qt::Key_T) {
        set_tone(!tone_);
    } else {
        QWidget::keyPressEvent(event);
    }
}

}  // namespace m47::level
