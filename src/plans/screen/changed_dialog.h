// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

#include "stored_program.h"
#include "texts.h"

class QDialogButtonBox;

namespace m47 {

/// What another program has stored meanwhile beside what the user wants to store, field by field.
class ChangedDialog : public QDialog {
    Q_OBJECT
  public:
    enum class Choice { neither, stored, mine };

    ChangedDialog(const ChangedMeanwhile& change, const Texts& texts, QWidget* parent);

    /// What the user wants, once the dialog has ended; neither where it was closed.
    Choice choice() const { return choice_; }

  private:
    void add_button(QDialogButtonBox* box, const char* name, const QString& text, Choice choice);

    Choice choice_ = Choice::neither;
};

}  // namespace m47
