// SPDX-License-Identifier: GPL-3.0-or-later
#include "level_view.h"

#include <QKeyEvent>
#include <QScreen>
#include <chrono>
#include <utility>

#include "busy_input.h"

namespace m47::level {
namespace {

constexpr Bilingual kLevelTitle{"Level", "Livello"};
constexpr Bilingual kKeys{
    "Esc: back    Space: %1    Q: %2    P: new peak    C: chime %3    T: tone %4",
    "Esc: indietro    Spazio: %1    Q: %2    P: nuovo massimo    C: avviso %3    T: tono %4"};
constexpr Bilingual kRepeat{"this alone, repeated", "solo questo, ripetuto"};
constexpr Bilingual kLevelNext{"level", "livello"};
constexpr Bilingual kCnNext{"C/N", "C/N"};
constexpr Bilingual kMerNext{"MER", "MER"};
constexpr Bilingual kStopRepeating{"stop", "ferma"};
constexpr Bilingual kToneOn{"on", "acceso"};
constexpr Bilingual kToneOff{"off", "spento"};
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
const QColor kPeakColour(0xFF, 0xD0, 0x40);
const QColor kCaptionColour(0xE0, 0xE0, 0xE0);

/// Of many new peaks in a row some are heard.
constexpr qint64 kBetweenChimes = 600;  // ms

measurement::Quantity behind(measurement::Quantity quantity) {
    if (quantity == measurement::Quantity::level) return measurement::Quantity::cn;
    return quantity == measurement::Quantity::cn ? measurement::Quantity::mer
                                                 : measurement::Quantity::level;
}

const Bilingual& word_of(measurement::Quantity quantity) {
    if (quantity == measurement::Quantity::cn) return kCnNext;
    return quantity == measurement::Quantity::mer ? kMerNext : kLevelNext;
}

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

/// The font in which `text` fills `room`.
QFont fitting(QFont font, const QRectF& room, const QString& text, bool bold) {
    font.setBold(bold);
    font.setPixelSize(100);
    const QFontMetricsF metrics(font);
    const double scale = qMin(room.width() / qMax(1.0, metrics.horizontalAdvance(text)),
                              room.height() / metrics.height());
    font.setPixelSize(qMax(8, static_cast<int>(100 * scale)));
    return font;
}

/// Draws `text` as large as `room` lets it be.
void draw_fitting(QPainter& painter, const QRectF& room, const QString& text, bool bold,
                  Qt::Alignment place = Qt::AlignCenter) {
    if (text.isEmpty()) return;
    painter.setFont(fitting(painter.font(), room, text, bold));
    painter.drawText(room, static_cast<int>(place), text);
}

/// Draws a number as large as `room` lets its digits be. The size is that of the widest number of
/// as many characters, so that it does not jump from value to value.
void draw_number(QPainter& painter, const QRectF& room, const QString& text) {
    QString widest = text.size() < 4 ? QStringLiteral("88.8") : text;
    for (QChar& character : widest)
        if (character.isDigit()) character = u'8';
    QFont font = painter.font();
    font.setBold(true);
    font.setPixelSize(100);
    const QFontMetricsF metrics(font);
    const double digits = metrics.tightBoundingRect(QStringLiteral("8")).height();
    const double scale =
        qMin(room.width() / metrics.horizontalAdvance(widest), room.height() / digits);
    font.setPixelSize(qMax(8, static_cast<int>(100 * scale)));
    painter.setFont(font);
    // Between the lines above and below a digit a font has room that the digits may take.
    const QRectF tight = QFontMetricsF(font).tightBoundingRect(QStringLiteral("8"));
    const double width = QFontMetricsF(font).horizontalAdvance(text);
    painter.drawText(QPointF(room.center().x() - width / 2, room.center().y() - tight.center().y()),
                     text);
}

}  // namespace

LevelView::LevelView(const Texts& texts, std::function<bool()> linked, QWidget* parent)
    : QWidget(parent, Qt::Window), texts_(texts), linked_(std::move(linked)) {
    setObjectName(QStringLiteral("level_view"));
    setFocusPolicy(Qt::StrongFocus);
    setAutoFillBackground(false);
    keep_while_busy(this);
    clock_.start();
    connect(&ageing_, &QTimer::timeout, this, &LevelView::refresh);
}

void LevelView::open() {
    setWindowTitle(texts_.pick(kLevelTitle));
    ageing_.start(std::chrono::seconds(1));
    display_.opens();
    // A display without a window manager makes nothing larger by itself.
    setGeometry(parentWidget()->screen()->geometry());
    showFullScreen();
    activateWindow();
    setFocus();
    refresh();
}

void LevelView::closeEvent(QCloseEvent* event) {
    if (repeating()) Q_EMIT repeat_asked(false);
    ageing_.stop();
    set_remark(QString());
    set_tone(false);
    set_chime(false);
    QWidget::closeEvent(event);
}

void LevelView::measured(const measurement::Measurement& measurement) {
    display_.measured(measurement, now());
    refresh();
    if (!isVisible()) return;
    if (chime_ && display_.new_peak()) return ring();
    if (tone_) sound();
}

void LevelView::ring() {
    if (since_chime_.isValid() && since_chime_.elapsed() < kBetweenChimes) return;
    player_.chime();
    since_chime_.start();
    // The next tone would break it off.
    since_tone_.start();
}

/// A tone that is broken off by the next one clicks: of many values a second some are heard.
void LevelView::sound() {
    const std::optional<double> level = display_.heard();
    const double seconds = repeating() ? TonePlayer::kBriefSeconds : TonePlayer::kSeconds;
    const bool still_sounds =
        since_tone_.isValid() && static_cast<double>(since_tone_.elapsed()) < 1000 * seconds;
    if (!level || (repeating() && still_sounds)) return;
    player_.play(*level, seconds);
    since_tone_.start();
}

void LevelView::begins() {
    display_.begins();
    refresh();
}

void LevelView::ended() {
    display_.ended();
    refresh();
}

void LevelView::repeats(bool on) {
    display_.repeats(on, now());
    on ? display_.begins() : display_.ended();
    refresh();
}

void LevelView::grows_old() {
    if (isVisible() && display_.picture(now(), linked_(), texts_).age != age_) refresh();
}

void LevelView::refresh() {
    if (!isVisible()) return;
    const LevelPicture shown = display_.picture(now(), linked_(), texts_);
    age_ = shown.age;
    const bool was_live = std::exchange(was_live_, display_.live(now(), linked_()));
    // Who has it read aloud would never hear a sentence to its end.
    if (!repeating() || was_live != was_live_ || sender() == &ageing_) speak(shown);
    update();
}

void LevelView::speak(const LevelPicture& shown) {
    QStringList spoken{shown.value,  shown.unit,    repeating() ? shown.below : QString(),
                       shown.margin, shown.verdict, shown.age};
    spoken.removeAll(QString());
    setAccessibleName(spoken.join(u' '));
}

void LevelView::set_remark(const QString& text) {
    remark_ = text;
    refresh();
}

void LevelView::set_tone(bool on) {
    remark_.clear();
    tone_ = on && open_sound();
    if (!tone_ && !chime_) player_.close();
    refresh();
}

void LevelView::set_chime(bool on) {
    remark_.clear();
    chime_ = on && open_sound();
    if (!tone_ && !chime_) player_.close();
    refresh();
}

/// False, with a remark once, where nothing can be heard.
bool LevelView::open_sound() {
    if (tone_ || chime_ || player_.open()) return true;
    if (told_of_no_device_) return false;
    const QString& fault = player_.fault();
    remark_ = fault.isEmpty() ? texts_.pick(kNoSound) : texts_.pick(kSoundNotLoaded).arg(fault);
    told_of_no_device_ = true;
    return false;
}

void LevelView::show_quantity(measurement::Quantity quantity) {
    const bool repeated = repeating();
    if (repeated) Q_EMIT repeat_asked(false);
    display_.show(quantity);
    if (repeated) Q_EMIT repeat_asked(true);
    refresh();
}

void LevelView::next_quantity() {
    show_quantity(behind(display_.quantity()));
}

QString LevelView::hint() const {
    if (!remark_.isEmpty()) return remark_;
    const auto switched = [this](bool on) { return texts_.pick(on ? kToneOff : kToneOn); };
    return texts_.pick(kKeys).arg(texts_.pick(repeating() ? kStopRepeating : kRepeat),
                                  texts_.pick(word_of(behind(display_.quantity()))),
                                  switched(chime_), switched(tone_));
}

void LevelView::paintEvent(QPaintEvent*) {
    // Asked at each painting: what is painted again is never older than it says.
    const LevelPicture shown = display_.picture(now(), linked_(), texts_);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), Qt::black);
    paint_level(painter, shown);
    paint_bar(painter, shown);
    paint_rest(painter, shown);
}

/// The value takes the whole width: it is read from three metres away.
void LevelView::paint_level(QPainter& painter, const LevelPicture& shown) {
    const double w = width();
    const double h = height();
    const double edge = w * 0.03;
    painter.setPen(colour_of(shown.colour));
    draw_number(painter, {edge, h * 0.11, w - 2 * edge, h * 0.4}, shown.value);
    painter.setPen(shown.colour == LevelColour::stale ? kStaleColour : kPeakColour);
    paint_distances(painter, shown);
    painter.setPen(colour_of(shown.colour));
    const double row = h * 0.64;
    draw_fitting(painter, {edge, row, w * 0.2, h * 0.11}, shown.unit, false,
                 Qt::AlignLeft | Qt::AlignVCenter);
    draw_fitting(painter, {w * 0.25, row, w * 0.3, h * 0.11}, shown.verdict, true);
    draw_fitting(painter, {w * 0.57, row, w * 0.4, h * 0.11}, shown.peak, false,
                 Qt::AlignRight | Qt::AlignVCenter);
}

/// What lies between the value and its peak, and what is left of the MER: in one row, which the
/// first has alone where there is no limit.
void LevelView::paint_distances(QPainter& painter, const LevelPicture& shown) {
    const double edge = width() * 0.03;
    QRectF row(edge, height() * 0.52, width() - 2 * edge, height() * 0.115);
    if (!shown.margin.isEmpty()) {
        const double half = (row.width() - edge) / 2;
        draw_fitting(painter, {row.right() - half, row.top(), half, row.height()}, shown.margin,
                     true);
        row.setWidth(half);
    }
    draw_fitting(painter, row, shown.below, true);
}

/// The bar from the lowest to the highest level that the meter can read, with a mark at the peak.
void LevelView::paint_bar(QPainter& painter, const LevelPicture& shown) {
    const double edge = width() * 0.03;
    const QRectF frame(edge, height() * 0.77, width() - 2 * edge, height() * 0.08);
    painter.setPen(kCaptionColour);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(frame);
    const QRectF inside = frame.adjusted(2, 2, -2, -2);
    if (shown.bar) {
        QRectF filled = inside;
        filled.setWidth(inside.width() * *shown.bar);
        painter.fillRect(filled, colour_of(shown.colour));
    }
    if (!shown.bar_peak) return;
    const double thick = qMax(3.0, width() * 0.005);
    const double left = inside.left() + (inside.width() - thick) * *shown.bar_peak;
    painter.fillRect(QRectF(left, inside.top(), thick, inside.height()), kPeakColour);
}

void LevelView::paint_rest(QPainter& painter, const LevelPicture& shown) {
    const double w = width();
    const double h = height();
    const double edge = w * 0.03;
    painter.setPen(kCaptionColour);
    draw_fitting(painter, {edge, h * 0.01, w - 2 * edge, h * 0.09}, shown.name, false);
    painter.setPen(shown.colour == LevelColour::stale ? kStaleColour : kCaptionColour);
    draw_fitting(painter, {edge, h * 0.865, w - 2 * edge, h * 0.065}, shown.age, false);
    painter.setPen(kCaptionColour);
    draw_fitting(painter, {edge, h * 0.94, w - 2 * edge, h * 0.05}, hint(), false);
}

void LevelView::keyPressEvent(QKeyEvent* event) {
    // A key that is held down is meant once.
    if (event->isAutoRepeat()) return;
    const int key = event->key();
    if (key == Qt::Key_Escape || key == Qt::Key_F11) {
        close();
    } else if (key == Qt::Key_T) {
        set_tone(!tone_);
    } else if (key == Qt::Key_C) {
        set_chime(!chime_);
    } else if (key == Qt::Key_Q) {
        next_quantity();
    } else if (key == Qt::Key_P) {
        display_.forget_peak();
        refresh();
    } else if (key == Qt::Key_Space) {
        Q_EMIT repeat_asked(!repeating());
    } else {
        QWidget::keyPressEvent(event);
    }
}

}  // namespace m47::level
