// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

#include "band_chart.h"
#include "part.h"
#include "texts.h"

class QLabel;
class QVBoxLayout;

namespace m47::band {

/// The chart of the band. What draws it is loaded when it is first asked for.
class BandChartView : public QWidget {
    Q_OBJECT
  public:
    explicit BandChartView(QWidget* parent = nullptr);

    /// The chart; null where what draws it is missing, which `texts` say in its place.
    BandChart* chart(const Texts& texts);
    /// The file that is missing; empty where it was loaded.
    const QString& fault() const { return part_.fault(); }

  Q_SIGNALS:
    void place_clicked(double mhz, std::size_t marker);
    void marker_moved(std::size_t marker, bool up);
    void flag_clicked(std::size_t flag);

  private:
    void show_missing(const Texts& texts);

    Part part_{kBandPart};
    QVBoxLayout* layout_;
    QLabel* missing_ = nullptr;
    BandChart* chart_ = nullptr;
};

}  // namespace m47::band
