// SPDX-License-Identifier: GPL-3.0-or-later
#include "line_recording.h"

#include <QFileInfo>
#include <QSysInfo>

#include "handler_watch.h"
#include "recording_file.h"
#include "say_on_stderr.h"

namespace m47::unattended {
namespace {

constexpr Bilingual kNotBegun{"The line is not recorded, %1 cannot be written: %2",
                              "La linea non viene registrata, %1 non si può scrivere: %2"};
constexpr Bilingual kEndedEarly{
    "The recording of the line has ended, %1 cannot be written any more: %2",
    "La registrazione della linea è terminata, %1 non si può più scrivere: %2"};

QString recorded_by() {
    return QLatin1String(spoken_name()) + QStringLiteral(" " M47_VERSION " Qt ") +
           QLatin1String(qVersion());
}

}  // namespace

LineRecording::LineRecording(link::LineRecorder& recorder, const Texts& texts)
    : recorder_(recorder), texts_(texts) {
    recorder_.on_failed = [this](const QString& reason) {
        watch_handlers(this, nullptr);
        tell_lost(kEndedEarly, reason);
    };
}

LineRecording::~LineRecording() {
    on_change = nullptr;
    stop();
    recorder_.on_failed = nullptr;
}

void LineRecording::start(const QString& path) {
    stop();
    path_ = QFileInfo(path).absoluteFilePath();
    auto file = std::make_unique<link::RecordingFile>(path_);
    if (file->fault()) return tell_lost(kNotBegun, qt_error_string(file->fault().value()));
    recorder_.start(std::move(file), recorded_by());
    recorder_.note(QStringLiteral("system ") + QSysInfo::prettyProductName() + u' ' +
                   QSysInfo::kernelVersion() + u' ' + QSysInfo::currentCpuArchitecture());
    if (!running()) return;
    watch_handlers(this, [this](const char* name) { recorder_.user(name); });
    tell_change();
}

void LineRecording::stop() {
    // Whoever else has ended the recording meanwhile.
    watch_handlers(this, nullptr);
    if (!running()) return;
    recorder_.stop();
    tell_change();
}

void LineRecording::tell_lost(const Bilingual& words, const QString& reason) {
    lost_ = true;
    if (on_lost) on_lost(Said{words, {path_, reason}}.in(texts_));
    tell_change();
}

void LineRecording::tell_change() const {
    if (on_change) on_change();
}

}  // namespace m47::unattended
