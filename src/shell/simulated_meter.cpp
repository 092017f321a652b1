// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulated_meter.h"

#include <QCoreApplication>
#include <QDir>
#include <cstdio>

#include "child_process.h"

namespace m47::shell {
namespace {

/// It only has to open a pseudo-terminal.
constexpr int kStartLimit = 5000;  // ms
/// And to read a recording of some gigabytes.
constexpr int kReadLimit = 30000;
constexpr int kEndLimit = 1000;

constexpr Bilingual kNotStarted{"The simulated meter %1 cannot be started: %2",
                                "Lo strumento simulato %1 non si avvia: %2"};
constexpr Bilingual kNoLine{"it opened no line", "non ha aperto alcuna linea"};

}  // namespace

SimulatedMeter::SimulatedMeter(const QString& program) : program_(program) {
    QObject::connect(&process_, &QProcess::readyReadStandardError, &process_,
                     [this] { pass_on_words(); });
    platform::end_with_this_program(process_);
}

SimulatedMeter::~SimulatedMeter() {
    end();
}

void SimulatedMeter::end() {
    device_.clear();
    if (process_.state() == QProcess::NotRunning) return;
    process_.terminate();
    if (!process_.waitForFinished(kEndLimit)) process_.kill();
    process_.waitForFinished(kEndLimit);
}

QString SimulatedMeter::bundled() {
    return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("m47-meter"));
}

QString SimulatedMeter::start(const QString& recording) {
    const bool runs = process_.state() == QProcess::Running && !device_.isEmpty();
    // A recording begins where it begins.
    if (runs && recording.isEmpty() && recording_.isEmpty()) return device_;
    end();
    recording_ = recording;
    said_last_.clear();
    process_.start(program_, arguments(), QIODevice::ReadOnly);
    while (!process_.canReadLine())
        if (!process_.waitForReadyRead(recording.isEmpty() ? kStartLimit : kReadLimit)) return {};
    const QString line = QString::fromLocal8Bit(process_.readLine()).trimmed();
    device_ = folder_ ? folder_->filePath(QStringLiteral("meter")) : line;
    return device_;
}

QStringList SimulatedMeter::arguments() {
    folder_.reset();
    if (recording_.isEmpty()) return {};
    // Where the line was lost in the recording, the device goes, and another one comes back.
    folder_ = std::make_unique<QTemporaryDir>();
    return {QStringLiteral("--replay"), recording_, QStringLiteral("--link"),
            folder_->filePath(QStringLiteral("meter"))};
}

void SimulatedMeter::pass_on_words() {
    const QByteArray words = process_.readAllStandardError();
    std::fwrite(words.constData(), 1, std::size_t(words.size()), stderr);
    const QString name = QStringLiteral("m47-meter: ");
    for (const QString& line : QString::fromLocal8Bit(words).split(u'\n', Qt::SkipEmptyParts))
        said_last_ = line.startsWith(name) ? line.mid(name.size()) : line;
}

QString SimulatedMeter::fault(const Texts& texts) const {
    QString reason = said_last_.isEmpty() ? texts.pick(kNoLine) : said_last_;
    if (process_.error() == QProcess::FailedToStart) reason = process_.errorString();
    return Said{kNotStarted, {QDir::toNativeSeparators(program_), reason}}.in(texts);
}

bool SimulatedMeter::is_behind(const QString& device) const {
    return !device_.isEmpty() && device == device_ && process_.state() == QProcess::Running;
}

}  // namespace m47::shell
