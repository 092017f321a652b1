// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QWidget>

#include "database.h"
#include "link.h"
#include "program_state.h"

namespace m47::shell {

/// The menu entry that brings plans and satellites from a file of the old engine.
class ImportCommand {
  public:
    /// Its boxes stand over `window`; the view of `link` keeps the windows alive while the file is
    /// read.
    ImportCommand(db::Database& database, link::Link& link, const ProgramState& program,
                  QWidget& window);

    /// Asks for the file, for what is to become of every plan and satellite that is there already,
    /// imports and shows the report. Cancelling any of the questions imports nothing.
    void cmdimportdb_Click();

  private:
    void import_file(const QString& path);
    void pump();

    db::Database& database_;
    link::Link& link_;
    const ProgramState& program_;
    const Texts& texts_;
    QWidget& window_;
};

/// The same without asking: what is there already is kept, and the report goes to stdout. Returns
/// the exit status.
int import_unattended(db::Database& database, const QString& path, const Texts& texts);

}  // namespace m47::shell
