// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTableWidget>
#include <vector>

#include "carrier_programs.h"
#include "texts.h"

namespace m47::band {

/// The carriers that were found, a row each. A click on one, or Enter, chooses it.
class CarrierTable : public QTableWidget {
    Q_OBJECT
  public:
    explicit CarrierTable(QWidget* parent = nullptr);

    void show_carriers(const std::vector<FoundCarrier>& carriers, const Texts& texts);

  Q_SIGNALS:
    /// The carrier of row `row` (from 0).
    void chosen(int row);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
};

/// What a state of the LNB is called: "18 V 22 kHz".
QString feed_text(const Feed& feed, const Texts& texts);
/// What the choice of all of them is called.
QString all_feeds_text(const Texts& texts);

}  // namespace m47::band
