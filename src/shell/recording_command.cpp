// SPDX-License-Identifier: GPL-3.0-or-later
#include "recording_command.h"

#include <QFileDialog>

#include "file_question.h"
#include "say_on_stderr.h"

namespace m47::shell {
namespace {

constexpr Bilingual kRecordTitle{"Record the line", "Registra la linea"};
constexpr Bilingual kRecordings{"Recordings (*.trace);;All files (*)",
                                "Registrazioni (*.trace);;Tutti i file (*)"};

}  // namespace

RecordingCommand::RecordingCommand(unattended::LineRecording& recording,
                                   const ProgramState& program, M47MDI& window)
    : recording_(recording), program_(program), window_(window) {
    recording_.on_change = [this] { show_texts(); };
    recording_.on_lost = [this](const QString& sentence) {
        unattended::say_on_stderr(sentence, unattended::Subsystem::kRecording);
        window_.show_notice(sentence);
    };
}

void RecordingCommand::cmdtrace_Click() {
    if (recording_.running())
        recording_.stop();
    else
        begin();
    // Whatever became of it, the tick is that of a recording that runs.
    show_texts();
}

void RecordingCommand::begin() {
    QFileDialog dialog(&window_, program_.texts.pick(kRecordTitle), QString(),
                       program_.texts.pick(kRecordings));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("trace"));
    dialog.selectFile(proposed_name_with_time(QStringLiteral("line"), QStringLiteral("trace")));
    const QString path = ask_for_file(dialog, program_, FilePurpose::recording);
    if (!path.isEmpty()) recording_.start(path);
}

void RecordingCommand::show_texts() {
    window_.show_recording(recording_.running() ? recording_.path() : QString());
}

}  // namespace m47::shell
