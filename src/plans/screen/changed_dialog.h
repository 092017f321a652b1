// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <span>

#include "stored_program.h"
#include "texts.h"

class QDialogButtonBox;

namespace m47::plans {

/// What another program has stored meanwhile beside what the user wants to store or has seen of
/// what is to be deleted, field by field.
class ChangedDialog : public QDialog {
    Q_OBJECT
  public:
    enum class Choice { neither, stored, mine };

    ChangedDialog(const ChangedMeanwhile& change, const Texts& texts, QWidget* parent);
    /// To delete it all the same is the choice `mine`.
    ChangedDialog(const RemovalChanged& change, const Texts& texts, QWidget* parent);

    /// What the user wants, once the dialog has ended; neither where it was closed.
    Choice choice() const { return choice_; }

  private:
    void show_changes(const QString& question, const QList<ChangedField>& fields,
                      std::span<const Bilingual> columns, const Texts& texts);
    void add_button(const char* name, const QString& text, Choice choice);

    QDialogButtonBox* buttons_ = nullptr;
    Choice choice_ = Choice::neither;
};

}  // namespace m47::plans
