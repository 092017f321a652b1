// SPDX-License-Identifier: GPL-3.0-or-later
#include "line_recorder.h"

#include <utility>

#include "port_diagnosis.h"

namespace m47::link {
namespace {

constexpr const char* kFormat = "M47TRACE 1 ";
constexpr const char* kLineSettings = " 38400,n,8,2";
/// Room for a command, so that none is sought for between two characters.
constexpr qsizetype kUsualFrame = 256;

/// A name may have any character in it, and an event is one line.
QByteArray one_line(const QString& text) {
    QByteArray line = text.toUtf8();
    for (char& byte : line)
        if (static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F) byte = ' ';
    return line;
}

QByteArray printable_byte(char byte) {
    switch (byte) {
        case '\r':
            return "<CR>";
        case '\n':
            return "<LF>";
        case '\t':
            return "<TAB>";
        case '<':
            return "<LT>";
        default:
            return '<' + QByteArray(1, byte).toHex().toUpper() + '>';
    }
}

QByteArray time_text(double milliseconds) {
    return QByteArray::number(milliseconds, 'f', 3);
}

}  // namespace

QByteArray printable(const QByteArray& bytes) {
    QByteArray text;
    text.reserve(bytes.size() + 16);
    for (const char byte : bytes) {
        if (byte >= 0x20 && byte <= 0x7E && byte != '<')
            text += byte;
        else
            text += printable_byte(byte);
    }
    return text;
}

template <class Work>
void LineRecorder::guarded(Work work) noexcept {
    if (!sink_) return;
    try {
        work();
    } catch (...) {
        fail(std::make_error_code(std::errc::not_enough_memory));
    }
}

void LineRecorder::start(std::unique_ptr<RecordingSink> sink, const QString& program) noexcept {
    stop();
    sink_ = std::move(sink);
    guarded([&] {
        begin_ = clock_.steady();
        frame_.clear();
        frame_.reserve(kUsualFrame);
        const QDateTime now = clock_.date_time();
        const QDateTime with_offset = now.toOffsetFromUtc(now.offsetFromUtc());
        put(kFormat + with_offset.toString(Qt::ISODate).toLatin1() + ' ' + one_line(program) +
            '\n');
    });
}

void LineRecorder::stop() noexcept {
    note(QStringLiteral("recording ended"));
    sink_.reset();
}

void LineRecorder::opened(const QString& path) noexcept {
    guarded([&] { write_event("PORT", "open " + one_line(path) + kLineSettings); });
}

void LineRecorder::open_failed(PortFault fault) noexcept {
    guarded([&] { write_event("PORT", QByteArray("open-failed ") + port_fault_name(fault)); });
}

void LineRecorder::closed() noexcept {
    guarded([&] { write_event("PORT", "close"); });
}

void LineRecorder::lost(PortFault fault) noexcept {
    guarded([&] { write_event("PORT", QByteArray("lost ") + port_fault_name(fault)); });
}

void LineRecorder::sent(char character) noexcept {
    guarded([&] {
        frame_end_ = milliseconds();
        if (frame_.isEmpty()) frame_begin_ = frame_end_;
        frame_ += character;
        if (character == '\r') write_frame();
    });
}

void LineRecorder::received(const QByteArray& bytes) noexcept {
    guarded([&] { write_event("TX", printable(bytes)); });
}

void LineRecorder::user(const char* name) noexcept {
    guarded([&] { write_event("USER", one_line(QString::fromUtf8(name))); });
}

void LineRecorder::note(const QString& text) noexcept {
    guarded([&] { write_event("NOTE", one_line(text)); });
}

void LineRecorder::write_event(const char* kind, const QByteArray& text) {
    write_frame();
    const double now = milliseconds();
    write_line(kind, now, now, text);
}

/// What has gone out, be it a whole command or not, stands before what came behind it.
void LineRecorder::write_frame() {
    if (frame_.isEmpty()) return;
    write_line("RX", frame_begin_, frame_end_, printable(frame_));
    frame_.resize(0);
}

void LineRecorder::write_line(const char* kind, double first, double last, const QByteArray& text) {
    put(QByteArray(kind) + ' ' + time_text(first) + ' ' + time_text(last) + ' ' + text + '\n');
}

void LineRecorder::put(const QByteArray& lines) {
    if (!sink_) return;
    const std::error_code error = sink_->put({lines.constData(), std::size_t(lines.size())});
    if (error) fail(error);
}

void LineRecorder::fail(const std::error_code& error) noexcept {
    sink_.reset();
    try {
        if (on_failed) on_failed(qt_error_string(error.value()));
    } catch (...) {
        // Who was to be told has no memory for it either.
    }
}

}  // namespace m47::link
