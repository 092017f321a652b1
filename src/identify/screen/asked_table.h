// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTableWidget>
#include <optional>

#include "identification_run.h"
#include "measurement.h"
#include "texts.h"

namespace m47::identify {

/// What the sky was asked and what it answered, a row each in their order; the newest is in sight
/// unless the user looks at an older one.
class AskedTable : public QTableWidget {
    Q_OBJECT
  public:
    explicit AskedTable(const Texts& texts, QWidget* parent = nullptr);

    /// Levels are in `unit`, where the meter has told one.
    void add(const Asked& asked, std::optional<LevelUnit> unit);

    /// Wide enough for all columns.
    QSize sizeHint() const override;

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void add_cell(int column, const QString& text);

    const Texts& texts_;
    int all_columns_ = 0;  ///< how wide they are together
};

}  // namespace m47::identify
