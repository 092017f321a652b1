// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulated_meter.h"

#include <QCoreApplication>
#include <QDir>

#include "child_process.h"

namespace m47::shell {
namespace {

/// It only has to open a pseudo-terminal.
constexpr int kStartLimit = 5000;  // ms
constexpr int kEndLimit = 1000;

constexpr Bilingual kNotStarted{"The simulated meter %1 cannot be started: %2",
                                "Lo strumento simulato %1 non si avvia: %2"};
constexpr Bilingual kNoLine{"it opened no line", "non ha aperto alcuna linea"};

}  // namespace

SimulatedMeter::SimulatedMeter(const QString& program) : program_(program) {
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    platform::end_with_this_program(process_);
}

SimulatedMeter::~SimulatedMeter() {
    process_.terminate();
    if (!process_.waitForFinished(kEndLimit)) process_.kill();
    process_.waitForFinished(kEndLimit);
}

QString SimulatedMeter::bundled() {
    return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("m47-meter"));
}

QString SimulatedMeter::start() {
    if (process_.state() == QProcess::Running && !device_.isEmpty()) return device_;
    process_.start(program_, {}, QIODevice::ReadOnly);
    device_.clear();
    while (!process_.canReadLine())
        if (!process_.waitForReadyRead(kStartLimit)) return {};
    device_ = QString::fromLocal8Bit(process_.readLine()).trimmed();
    return device_;
}

QString SimulatedMeter::fault(const Texts& texts) const {
    const bool not_there = process_.error() == QProcess::FailedToStart;
    return Said{kNotStarted,
                {QDir::toNativeSeparators(program_),
                 not_there ? process_.errorString() : texts.pick(kNoLine)}}
        .in(texts);
}

bool SimulatedMeter::is_behind(const QString& device) const {
    return !device_.isEmpty() && device == device_ && process_.state() == QProcess::Running;
}

}  // namespace m47::shell
