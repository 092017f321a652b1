// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <memory>

#include "restore_plan.h"
#include "texts.h"

namespace Ui {
class RestorePreview;
}

namespace m47::asl {

/// Shows what a restore would do to each slot, before anything is sent. It can be accepted only
/// when something changes.
class RestorePreview : public QDialog {
    Q_OBJECT
  public:
    RestorePreview(const RestorePlan& plan, const Texts& texts, QWidget* parent = nullptr);
    ~RestorePreview() override;

  private:
    void fill(const RestorePlan& plan, const Texts& texts);

    std::unique_ptr<Ui::RestorePreview> ui_;
};

}  // namespace m47::asl
