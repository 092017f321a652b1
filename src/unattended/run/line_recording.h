// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>

#include "line_recorder.h"
#include "texts.h"

namespace m47::unattended {

/// The recording of the line into a file: begun and ended by the user or by --trace.
class LineRecording {
  public:
    /// Both outlive it.
    LineRecording(link::LineRecorder& recorder, const Texts& texts);
    ~LineRecording();
    LineRecording(const LineRecording&) = delete;
    LineRecording& operator=(const LineRecording&) = delete;

    /// Told when a recording begins or ends.
    std::function<void()> on_change;
    /// Told, in one sentence for the user, that a recording could not go on. It may come in the
    /// middle of an exchange: it may show it and nothing else.
    std::function<void(const QString& sentence)> on_lost;

    /// Records into `path`, whose older content is gone, from now on. Where that cannot be, on_lost
    /// is told and nothing is recorded.
    void start(const QString& path);
    void stop();

    bool running() const { return recorder_.recording(); }
    /// A recording could not begin or not go on.
    bool lost() const { return lost_; }
    /// The file that is or was last recorded into; empty before the first.
    const QString& path() const { return path_; }

  private:
    void tell_lost(const Bilingual& words, const QString& reason);
    void tell_change() const;

    link::LineRecorder& recorder_;
    const Texts& texts_;
    QString path_;
    bool lost_ = false;
};

}  // namespace m47::unattended
