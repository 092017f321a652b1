// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

#include "plan_file.h"
#include "plan_import.h"

namespace m47::plans {

/// Shows what an import will add, correct and leave out, before anything is written; accepted when
/// the user wants it.
class ImportDialog : public QDialog {
    Q_OBJECT
  public:
    ImportDialog(const ImportPreview& preview, const QStringList& unknown_columns,
                 const Texts& texts, QWidget* parent);
};

}  // namespace m47::plans
