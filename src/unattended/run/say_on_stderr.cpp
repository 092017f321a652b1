// SPDX-License-Identifier: GPL-3.0-or-later
#include "say_on_stderr.h"

#include <cstdio>

#include "texts.h"
#include "told_lines.h"

namespace m47::unattended {
namespace {

QtMessageHandler g_toolkit_messages = nullptr;
const char* g_spoken_name = "m47-remote";

/// Lets through what is told, but for one remark of the toolkit that every root shell and every
/// service would see and that concerns nothing here.
void pass_message(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (text.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR not set"))) return;
    told_lines().keep(type, context.category, text);
    g_toolkit_messages(type, context, text);
}

}  // namespace

const char* spoken_name() {
    return g_spoken_name;
}

void speak_as(const char* program) {
    g_spoken_name = program;
}

void say_on_stderr(const QString& text, const char* subsystem) {
    const QString line = on_one_line(text);
    told_lines().keep(QtWarningMsg, subsystem, line);
    std::fprintf(stderr, "%s: %s\n", g_spoken_name, line.toLocal8Bit().constData());
}

void say_of_run(const QString& text) {
    say_on_stderr(text, Subsystem::kRun);
}

void listen_to_messages() {
    g_toolkit_messages = qInstallMessageHandler(pass_message);
}

QString why_not_read(const platform::FileReading& reading, const QString& too_long) {
    if (reading.fault == platform::FileFault::too_long) return too_long;
    if (reading.fault == platform::FileFault::not_plain) return QStringLiteral("not a plain file");
    return reading.reason;
}

}  // namespace m47::unattended
