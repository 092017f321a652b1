// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

#include "logger_table.h"
#include "texts.h"

namespace m47::plans {

/// The logger table as the plan wants it beside the one that the meter has.
class VerifyDialog : public QDialog {
    Q_OBJECT
  public:
    VerifyDialog(const TableCheck& check, const Texts& texts, QWidget* parent);
};

}  // namespace m47::plans
