// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QDialogButtonBox>
#include <QPlainTextEdit>

#include "site_picker.h"
#include "visit_recorder.h"

namespace m47::sites {

/// "Begin visit…": where, by whom, over which plan.
class BeginVisitDialog : public QDialog {
    Q_OBJECT
  public:
    /// The sites of `store`, none where it is nullptr; `facts` as they are proposed. A StoreFault
    /// where the store cannot be read.
    BeginVisitDialog(const SiteStore* store, const VisitFacts& facts, const Texts& texts,
                     QWidget* parent);

    /// Once it was accepted.
    Site site() const;
    VisitFacts facts() const;

  private:
    QLineEdit* add_box(QFormLayout* form, const char* name, const Bilingual& caption,
                       const Bilingual& tip, const QString& text);
    void make_boxes(QFormLayout* form);
    QDialogButtonBox* make_buttons();

    const Texts& texts_;
    VisitFacts proposed_;
    SitePicker* picker_;
    QLineEdit* technician_ = nullptr;
    QLineEdit* plan_ = nullptr;
    QPlainTextEdit* remarks_ = nullptr;
};

}  // namespace m47::sites
