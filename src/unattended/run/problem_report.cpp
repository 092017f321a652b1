// SPDX-License-Identifier: GPL-3.0-or-later
#include "problem_report.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSysInfo>
#include <QTemporaryDir>

#include "engine.h"
#include "fault.h"
#include "plain_file.h"
#include "port_diagnosis.h"
#include "save_file.h"
#include "say_on_stderr.h"
#include "told_lines.h"

namespace m47::unattended {
namespace {

constexpr Bilingual kVersions{"versions of the program and of this system",
                              "versioni del programma e di questo sistema"};
constexpr Bilingual kPorts{"the ports and why one cannot be used",
                           "le porte e perché una non si può usare"};
constexpr Bilingual kPreferences{"preferences, without the names of files and folders",
                                 "preferenze, senza i nomi di file e cartelle"};
constexpr Bilingual kMessages{"the last messages of the program",
                              "gli ultimi messaggi del programma"};
constexpr Bilingual kRecording{"the recording of the line", "la registrazione della linea"};
constexpr Bilingual kRecordingEnd{"the last 32 MB of the recording of the line",
                                  "gli ultimi 32 MB della registrazione della linea"};
constexpr Bilingual kNoFolder{"there is no room for temporary files",
                              "non c'è posto per i file temporanei"};
constexpr Bilingual kNoTar{"the program \"tar\" failed: %1", "il programma \"tar\" ha fallito: %1"};

/// What still can be sent by mail once it is packed.
constexpr qint64 kMostOfRecording = qint64{32} * 1024 * 1024;
constexpr qint64 kMostOfPreferences = qint64{1024} * 1024;
constexpr int kPackingLimit = 120'000;  // ms
/// The folder in the archive.
const QString kFolder = QStringLiteral("m47-problem");

QString yes_or_no(bool yes) {
    return yes ? QStringLiteral("yes") : QStringLiteral("no");
}

QString versions_text(const ProgramState& program) {
    const QString desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP", QStringLiteral("-"));
    const QString session = qEnvironmentVariable("XDG_SESSION_TYPE", QStringLiteral("-"));
    const QString meter =
        program.meter_version.isEmpty() ? QStringLiteral("-") : program.meter_version;
    const QStringList lines{QStringLiteral("program   ") + QLatin1String(spoken_name()) +
                                QStringLiteral(" " M47_VERSION),
                            QStringLiteral("Qt        ") + QLatin1String(qVersion()) +
                                QStringLiteral(", built with " QT_VERSION_STR),
                            QStringLiteral("SQLite    ") + db::engine_version(),
                            QStringLiteral("system    ") + QSysInfo::prettyProductName() +
                                QStringLiteral(", ") + QSysInfo::kernelType() + u' ' +
                                QSysInfo::kernelVersion() + QStringLiteral(", ") +
                                QSysInfo::currentCpuArchitecture(),
                            QStringLiteral("desktop   ") + desktop + u' ' + session,
                            QStringLiteral("language  ") + QString::number(program.texts.language),
                            QStringLiteral("meter     ") + meter,
                            QStringLiteral("simulated ") + yes_or_no(program.simulated_meter),
                            QStringLiteral("folder    ") + QDir::cleanPath(program.base_dir),
                            QStringLiteral("time      ") +
                                QDateTime::currentDateTime()
                                    .toOffsetFromUtc(QDateTime::currentDateTime().offsetFromUtc())
                                    .toString(Qt::ISODate)};
    return lines.join(u'\n') + u'\n';
}

/// The port in use is looked at, the others only named: opening a line can wake what is there.
QString ports_text(MeterConnection& connection) {
    Texts english;
    const link::PortList& ports = connection.ports();
    const int in_use = connection.link().port_number;
    QString text;
    for (int number = 1; number <= link::PortList::kPorts; ++number) {
        const QString device = ports.device(number);
        if (device.isEmpty()) continue;
        text +=
            QStringLiteral("port %1: %2, %3\n").arg(number).arg(device, ports.description(number));
        if (number != in_use) continue;
        const link::PortFault fault = link::look_at(device);
        text += QStringLiteral("  in use, connected: ") +
                yes_or_no(connection.link().port_connected) +
                QStringLiteral(", what is wrong with it now: ") +
                QLatin1String(link::port_fault_name(fault)) + u'\n';
        const QString words = link::port_fault_text(fault, device, english);
        if (!words.isEmpty()) text += QStringLiteral("  ") + on_one_line(words) + u'\n';
    }
    const QString fault = connection.fault();
    if (!fault.isEmpty()) text += QStringLiteral("last: ") + on_one_line(fault) + u'\n';
    return text.isEmpty() ? QStringLiteral("no ports\n") : text;
}

/// The whole recording, or of a long one its first line and its end, from a line's begin on.
QByteArray recording_bytes(const QString& path, bool& cut) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    cut = file.size() > kMostOfRecording;
    if (!cut) return file.readAll();
    const QByteArray first = file.readLine();
    file.seek(file.size() - kMostOfRecording);
    file.readLine();
    return first + file.readAll();
}

ProblemItem text_item(const char* name, const Bilingual& what, const QString& text,
                      const Person& person) {
    return {QLatin1String(name), what, impersonal(text, person).toUtf8(), true, true, nullptr};
}

/// What `path` holds; empty where nothing is to be read.
QString content_of(const QString& path) {
    if (path.isEmpty()) return {};
    return QString::fromUtf8(platform::read_plain_file(path, kMostOfPreferences).bytes);
}

void put_into(const QString& folder, const ProblemItem& item) {
    const QString path = folder + u'/' + item.name;
    if (item.make) return item.make(path);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(item.bytes) != item.bytes.size() ||
        !file.flush())
        throw Fault(file.errorString().toStdString());
}

/// The folder `kFolder` in `folder` as a packed archive, which names no owner.
QByteArray packed(const QString& folder, const Texts& texts) {
    QProcess tar;
    tar.start(QStringLiteral("tar"),
              {QStringLiteral("--create"), QStringLiteral("--gzip"), QStringLiteral("--file=-"),
               QStringLiteral("--owner=user:0"), QStringLiteral("--group=user:0"),
               QStringLiteral("--sort=name"), QStringLiteral("--directory=") + folder, kFolder},
              QIODevice::ReadOnly);
    const bool ended = tar.waitForFinished(kPackingLimit);
    if (ended && tar.exitStatus() == QProcess::NormalExit && tar.exitCode() == 0)
        return tar.readAllStandardOutput();
    const QString said = QString::fromLocal8Bit(tar.readAllStandardError()).trimmed();
    throw Fault(texts.pick(kNoTar).arg(said.isEmpty() ? tar.errorString() : said).toStdString());
}

}  // namespace

std::vector<ProblemItem> problem_items(const ProgramState& program, MeterConnection& connection,
                                       const QString& recording, const Person& person) {
    std::vector<ProblemItem> items;
    items.push_back(text_item("versions.txt", kVersions, versions_text(program), person));
    items.push_back(text_item("ports.txt", kPorts, ports_text(connection), person));
    const QString preferences = content_of(program.preferences.file());
    if (!preferences.isEmpty())
        items.push_back(text_item("preferences.ini", kPreferences,
                                  impersonal_preferences(preferences, person), person));
    const QStringList told = told_lines().lines();
    if (!told.isEmpty())
        items.push_back(text_item("messages.txt", kMessages, told.join(u'\n') + u'\n', person));
    bool cut = false;
    const QByteArray recorded =
        recording.isEmpty() ? QByteArray() : recording_bytes(recording, cut);
    if (!recorded.isEmpty())
        items.push_back({QStringLiteral("line.trace"), cut ? kRecordingEnd : kRecording,
                         impersonal_recording(recorded, person), true, true, nullptr});
    return items;
}

QString write_problem_report(const QString& path, const std::vector<ProblemItem>& items,
                             const Texts& texts) try {
    const QTemporaryDir folder;
    const QString inner = folder.filePath(kFolder);
    if (!folder.isValid() || !QDir().mkdir(inner)) return texts.pick(kNoFolder);
    for (const ProblemItem& item : items)
        if (item.wanted) put_into(inner, item);
    return write_whole_file(path, packed(folder.path(), texts));
} catch (const Fault& fault) {
    return fault.text(texts);
}

}  // namespace m47::unattended
