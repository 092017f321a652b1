// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <optional>

#include "link.h"
#include "logger_files.h"
#include "program_state.h"

namespace m47::logger {

/// The logged data on the screen: fetched from the meter, kept in files and read back. The bytes
/// are those of the meter (Latin-1); nothing on their way to a file recodes them.
class LoggerData {
  public:
    LoggerData(link::Link& link, ProgramState& program);

    /// The content of `dwl_txt`: lines, each ended by CR LF.
    const QByteArray& text() const { return text_; }

    /// The full name of the ".dwl" file last saved or opened, for the label `nome_file`.
    const QString& file_name() const { return file_name_; }

    /// Told while a download runs how many bytes of the answer have arrived.
    std::function<void(qsizetype bytes)> on_bytes;

    /// Fetches logs with `command` and shows them. `name` is that of the temporary file as typed;
    /// where it cannot be used nothing is sent and nothing changes but `temp_file_name`. The link
    /// reports its own failures; what it left of the answer is shown all the same.
    NameFault download(const QString& command, const QString& name);

    /// Fetches logs with `command` and keeps them as a file in the folder for copies; what is shown
    /// stays. The path of the file; nothing where they did not come whole. Logs that cannot be
    /// kept are a Fault.
    std::optional<QString> keep_copy_of(const QString& command);

    /// Shows the file `path`. One that cannot be read leaves the text empty and the name as it was.
    void open(const QString& path);

    /// Writes the text and one more line end to `path`. A failure is silent and leaves the name as
    /// it was.
    void save(const QString& path);

    /// Empties the text and deletes the file `path`; a failure to delete is silent.
    void remove(const QString& path);

  private:
    bool visualizza(const QByteArray& answer);
    bool show_file(const QString& path);

    link::Link& link_;
    ProgramState& program_;
    QByteArray text_;
    QString file_name_;
};

/// The page as it is printed: two empty lines, then the text as it stands.
QString print_page(const QByteArray& text);

}  // namespace m47::logger
