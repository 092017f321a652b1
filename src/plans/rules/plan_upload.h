// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <functional>
#include <optional>

#include "link.h"
#include "program_state.h"
#include "upload_commands.h"
#include "work.h"

namespace m47::plans {

/// What became of an upload.
struct UploadResult {
    int commands = 0;     ///< the upload has
    int accepted = 0;     ///< of them, answered with "OK"
    QStringList refused;  ///< all others, in their order
    QString table;        ///< the logger table before the upload, where it was asked for
};

/// Sends a plan to the meter.
class PlanUpload {
  public:
    PlanUpload(link::Link& link, const ProgramState& program) : link_(link), program_(program) {}

    /// Told before each command how many have been sent and how many there are.
    std::function<void(int sent, int commands)> on_progress;

    /// Sends the whole upload. A refused command does not stop it, a lost link does. The logger
    /// table that it asks for is kept in a file first; where that fails a Fault ends the upload
    /// before anything has been changed in the meter. Told to end, it ends between two programs.
    UploadResult run(const UploadPlan& plan, UploadMode mode);

    /// The meter's logger table now; nothing when the link is down or the meter refuses to tell it.
    std::optional<QString> ask_table();

    /// Reads the logger table and keeps it in a file: its path, empty where the table could not be
    /// read. A table that cannot be kept is a Fault.
    QString keep_table_now();

  private:
    /// The answer to the last of `commands`.
    std::optional<QString> send_all(const QStringList& commands, UploadResult& result);
    void send_programs(const UploadPlan& plan, UploadResult& result, link::Work& work);
    std::optional<QString> send_one(const QString& command, UploadResult& result);

    link::Link& link_;
    const ProgramState& program_;
};

/// "123 of 125 commands answered OK" in the language in use.
QString upload_summary(const UploadResult& result, const Texts& texts);

/// The commands that were not answered with "OK", one a line; empty when all were.
QString upload_refusals(const UploadResult& result);

}  // namespace m47::plans
