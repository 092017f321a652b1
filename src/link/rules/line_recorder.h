// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>
#include <string_view>
#include <system_error>

#include "clock.h"
#include "serial_port.h"

namespace m47::link {

/// Bytes of the line in printable form: <CR>, <LF>, <TAB>, <LT> for "<", <XX> for every other code
/// outside of 20 to 7E.
QByteArray printable(const QByteArray& bytes);

/// What keeps a recording.
class RecordingSink {
  public:
    virtual ~RecordingSink() = default;
    /// Takes whole lines, waiting for nothing. What went wrong where something did.
    virtual std::error_code put(std::string_view lines) noexcept = 0;
};

/// Writes down what happens on the line and what the user did, a line each, as docs/trace-file.md
/// tells. Whatever goes wrong with it ends the recording and nothing else: no member throws, and
/// none waits longer than the sink does.
class LineRecorder {
  public:
    explicit LineRecorder(const Clock& clock) : clock_(clock) {}
    ~LineRecorder() { stop(); }
    LineRecorder(const LineRecorder&) = delete;
    LineRecorder& operator=(const LineRecorder&) = delete;

    /// Told once, by the system's words, when a recording had to end. It may come in the middle of
    /// an exchange: it may show it and nothing else.
    std::function<void(const QString& reason)> on_failed;

    /// Begins a recording by `program`, the name, version and toolkit of who records.
    void start(std::unique_ptr<RecordingSink> sink, const QString& program) noexcept;
    /// Ends it with a line that says so; nothing where none runs.
    void stop() noexcept;
    bool recording() const { return sink_ != nullptr; }

    // What happens; nothing is written where no recording runs. ----------------------------
    void opened(const QString& path) noexcept;
    void open_failed(PortFault fault) noexcept;
    void closed() noexcept;
    void lost(PortFault fault) noexcept;
    /// A character went out. A line for each frame, from the first to the last character.
    void sent(char character) noexcept;
    /// A piece of an answer was read.
    void received(const QByteArray& bytes) noexcept;
    /// The user did what the handler `name` does.
    void user(const char* name) noexcept;
    void note(const QString& text) noexcept;

  private:
    double milliseconds() const { return (clock_.steady() - begin_) * 1e3; }
    template <class Work>
    void guarded(Work work) noexcept;
    void write_event(const char* kind, const QByteArray& text);
    void write_frame();
    void write_line(const char* kind, double first, double last, const QByteArray& text);
    void put(const QByteArray& lines);
    void fail(const std::error_code& error) noexcept;

    const Clock& clock_;
    std::unique_ptr<RecordingSink> sink_;
    double begin_ = 0;        ///< of the recording, on the steady clock
    QByteArray frame_;        ///< what has gone out of a command
    double frame_begin_ = 0;  ///< in ms, as the end
    double frame_end_ = 0;
};

}  // namespace m47::link
