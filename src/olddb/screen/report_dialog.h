// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <memory>

#include "texts.h"

namespace Ui {
class ReportDialog;
}

namespace m47::olddb {

/// Shows a report as text that can be selected and copied.
class ReportDialog : public QDialog {
    Q_OBJECT
  public:
    ReportDialog(const QString& title, const QString& text, const Texts& texts, QWidget* parent);
    ~ReportDialog() override;

  private:
    std::unique_ptr<Ui::ReportDialog> ui_;
};

}  // namespace m47::olddb
