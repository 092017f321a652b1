// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QPlainTextEdit>

#include "visit_of_window.h"

namespace m47::sites {

/// "End visit…": what it has, and remarks that can be added.
class EndVisitDialog : public QDialog {
    Q_OBJECT
  public:
    /// Of the visit that runs or was cut off.
    EndVisitDialog(const VisitOfWindow& visit, const Texts& texts, QWidget* parent);

    QString remarks() const { return remarks_->toPlainText().trimmed(); }

  private:
    QPlainTextEdit* remarks_;
};

}  // namespace m47::sites
