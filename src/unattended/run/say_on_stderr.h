// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "plain_file.h"

namespace m47::unattended {

/// Who tells something on stderr, named as logging categories are.
struct Subsystem {
    static constexpr const char* kStart = "m47.start";
    static constexpr const char* kRun = "m47.run";
    static constexpr const char* kFiles = "m47.files";
    static constexpr const char* kRecording = "m47.recording";
    static constexpr const char* kEnd = "m47.end";
};

/// The name of the program as it says it, "m47-remote" until it is told another one, which has to
/// stay as it is.
const char* spoken_name();
void speak_as(const char* program);

/// `text` as one line of stderr, "m47-remote: …", for whoever reads what a command says. The last
/// lines are kept (ToldLines).
void say_on_stderr(const QString& text, const char* subsystem);

/// The same of a run, which says it in the middle of its work.
void say_of_run(const QString& text);

/// From now on what the toolkit and its logging categories have to say is kept as well.
void listen_to_messages();

/// Why a file could not be read, in English; `too_long` where it is that.
QString why_not_read(const platform::FileReading& reading, const QString& too_long);

}  // namespace m47::unattended
