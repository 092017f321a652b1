// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QList>
#include <memory>
#include <optional>

#include "slot_comparison.h"
#include "texts.h"

namespace Ui {
class CompareView;
}

namespace m47::asl {

/// A satellite that can be compared: a slot of the meter or a record of the PC. Nothing for data
/// that are not whole.
struct Comparable {
    QString label;
    std::optional<SlotBlock> block;
};

/// Two satellites side by side, byte by byte; what the bytes mean the meter alone knows.
class CompareView : public QDialog {
    Q_OBJECT
  public:
    /// `left` and `right` are the places in `entries` that are shown first.
    CompareView(const QList<Comparable>& entries, int left, int right, const Texts& texts,
                QWidget* parent = nullptr);
    ~CompareView() override;

    /// Makes it the question `text` about the two: OK accepts the dialog, Cancel does not.
    void ask(const QString& text);

  private:
    void show_choice();
    void show_result(const QString& text);
    void show_rows(const SlotComparison& comparison);
    void tell_empty(const Comparable& entry);

    QString question_;
    const QList<Comparable> entries_;
    const Texts& texts_;
    std::unique_ptr<Ui::CompareView> ui_;
};

}  // namespace m47::asl
