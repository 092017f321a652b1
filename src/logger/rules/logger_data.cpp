// SPDX-License-Identifier: GPL-3.0-or-later
#include "logger_data.h"

#include <QFile>

#include "file_lock.h"
#include "kept_copy.h"
#include "work.h"

namespace m47::logger {
namespace {

constexpr Bilingual kNothingCame{"the download brought nothing, the meter still has its logs",
                                 "non è stato scaricato nulla, i log sono ancora nello strumento"};
constexpr Bilingual kKept{"the download is whole in %2, bytes: %1",
                          "lo scarico è completo in %2, byte: %1"};

constexpr Bilingual kNothingErased{"the logs were being read, nothing was erased",
                                   "lettura dei log in corso, nulla è stato cancellato"};
constexpr Bilingual kReadingFirst{"Reading what will be erased",
                                  "Lettura di ciò che sarà cancellato"};
constexpr Bilingual kDownloading{"Downloading the logs", "Scarico dei log"};
constexpr Bilingual kBytesSoFar{"Downloading the logs, %1 bytes", "Scarico dei log, %1 byte"};

constexpr Bilingual kNotKept{
    "The download is not shown: its temporary file cannot be written. The meter still has the "
    "logs.",
    "Lo scarico non si vede: il file temporaneo non si può scrivere. I log sono nello strumento."};
constexpr Bilingual kNotSaved{"The log was not saved: the file cannot be written.",
                              "Il log non è salvato: il file non si può scrivere."};
constexpr Bilingual kNotOpened{"The log was not opened: the file cannot be read.",
                               "Il log non è aperto: il file non si può leggere."};

constexpr Bilingual kNoLogs{
    "The meter has no logs to send. \"Start Log\" records one, and so does its own key.",
    "Lo strumento non ha log da inviare. \"Start Log\" ne registra uno, come il suo tasto."};

/// Nothing but the end of the answer.
bool holds_no_log(const QByteArray& text) {
    const QByteArray line = text.trimmed();
    return line.isEmpty() || line == "OK";
}

/// Reports the bytes of one download; other commands of the link are nobody's concern.
class ByteReport {
  public:
    ByteReport(link::Link& link, const std::function<void(qsizetype)>& report) : link_(link) {
        link_.on_received = report;
    }
    ~ByteReport() { link_.on_received = nullptr; }
    ByteReport(const ByteReport&) = delete;
    ByteReport& operator=(const ByteReport&) = delete;

  private:
    link::Link& link_;
};

}  // namespace

LoggerData::LoggerData(link::Link& link, ProgramState& program) : link_(link), program_(program) {}

NameFault LoggerData::download(const QString& command, const QString& name) {
    program_.temp_file_name = name.toUpper();
    const NameFault fault = temporary_name_fault(program_.temp_file_name);
    if (fault != NameFault::none) return fault;
    link::Work work(link_, kNothingCame);
    work.doing(kDownloading);
    bool came = false;
    {
        const ByteReport report(link_, [this, &work](qsizetype bytes) {
            work.doing(kBytesSoFar, {QString::number(bytes)});
            if (on_bytes) on_bytes(bytes);
        });
        came = link_.send(command);
    }
    // Without one the answer before is shown, so that the page never keeps what is older still.
    const QString& answer = link_.last_answer();
    const bool kept = visualizza(answer.toLatin1());
    if (came && !kept) program_.costs.tell_each(kNotKept);
    if (came && kept && holds_no_log(text_)) program_.costs.tell_each(kNoLogs);
    if (came && kept) work.at(kKept, {QString::number(answer.size()), program_.temp_file_name});
    return NameFault::none;
}

std::optional<QString> LoggerData::keep_copy_of(const QString& command) {
    link::Work work(link_, kNothingErased);
    work.doing(kReadingFirst);
    std::optional<QString> answer;
    {
        const ByteReport report(link_, on_bytes);
        answer = link_.ask(command);
    }
    // Whoever stops it does not want to be asked whether to erase.
    link_.end_when_interrupted();
    if (!answer) return std::nullopt;
    return keep_copy(program_.base_dir, kLogCopy, answer->toLatin1(), link_.clock().date_time());
}

/// False when it could not be kept in the temporary file.
bool LoggerData::visualizza(const QByteArray& answer) {
    text_.clear();
    const QString path = program_.base_dir + program_.temp_file_name;
    // Another window in the folder may use the same name: neither is to read the other's.
    const platform::FileLock alone(program_.base_dir);
    return !alone.refused() && write_file(path, answer, platform::Links::refused) &&
           show_file(path);
}

bool LoggerData::show_file(const QString& path) {
    QByteArray content;
    const bool whole = read_file(path, content);
    text_ = with_line_ends(content);
    return whole;
}

void LoggerData::open(const QString& path) {
    text_.clear();
    if (show_file(path))
        file_name_ = path;
    else
        program_.costs.tell_each(kNotOpened);
}

void LoggerData::save(const QString& path) {
    if (!write_file(path, text_, platform::Links::followed))
        return program_.costs.tell_each(kNotSaved);
    file_name_ = path;
    program_.saved(path);
}

void LoggerData::remove(const QString& path) {
    text_.clear();
    QFile::remove(path);
}

QString print_page(const QByteArray& text) {
    return QStringLiteral("\r\n\r\n") + QString::fromLatin1(text);
}

}  // namespace m47::logger
