// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QVector>
#include <QtPlugin>
#include <array>
#include <cstddef>
#include <functional>
#include <vector>

class QIODevice;
class QWidget;

namespace m47::band {

/// The curves of the chart, in the order in which they are drawn.
enum class Trace { reference, average, max_hold, live, difference };
inline constexpr std::size_t kTraces = 5;

/// A curve: levels, or their difference in dB, over frequencies in MHz. Empty where not shown.
struct Curve {
    QString name{};
    QVector<double> mhz;
    QVector<double> db;
};

/// A carrier in the chart: where its top is, and what is written there.
struct Flag {
    double mhz = 0;
    double level = 0;
    QString text;
};

/// A place that the user has marked.
struct Marker {
    bool set = false;
    double mhz = 0;
};
inline constexpr std::size_t kMarkers = 2;

/// All that the chart shows, in MHz of the axis chosen.
struct BandPicture {
    QString frequency_caption;
    QString level_caption;
    QString difference_caption;
    double from = 0;
    double to = 0;
    std::array<Curve, kTraces> curves;
    std::vector<Flag> flags;
    std::array<Marker, kMarkers> markers;

    Curve& curve(Trace trace) { return curves[static_cast<std::size_t>(trace)]; }
    const Curve& curve(Trace trace) const { return curves[static_cast<std::size_t>(trace)]; }
};

/// The chart of a band, as whoever shows it knows it.
class BandChart {
  public:
    virtual ~BandChart() = default;

    /// Told of a click beside all flags, in MHz: the first or the second marker is wanted there.
    std::function<void(double mhz, std::size_t marker)> on_place_clicked;
    /// Told of a key that takes a marker to the level next to it, below or above.
    std::function<void(std::size_t marker, bool up)> on_marker_moved;
    /// Told of a click on a flag, by its place in the picture.
    std::function<void(std::size_t flag)> on_flag_clicked;

    /// What shows it, which takes the chart along when it goes.
    virtual QWidget* widget() = 0;
    /// Shows `picture`; what was zoomed to stays. One that grows is drawn quickly, the last one
    /// well.
    virtual void show_band(const BandPicture& picture, bool grows) = 0;
    /// Shows all there is again; false where it did so already.
    virtual bool reset_zoom() = 0;

    /// A picture (PNG) or a page (PDF, called `title`) of what is shown now, in the colours of
    /// paper. False when it cannot be written.
    virtual bool draw_picture(QIODevice& file) = 0;
    virtual bool draw_page(QIODevice& file, const QString& title) = 0;
};

/// The file of what makes the chart.
inline constexpr const char* kBandPart = "m47-band";

/// What makes the chart; the plotting library comes with it.
class BandCharts {
  public:
    virtual ~BandCharts() = default;

    virtual BandChart* make(QWidget* parent) = 0;
};

}  // namespace m47::band

#define M47_BAND_CHARTS "org.m47remote.BandCharts/1"
Q_DECLARE_INTERFACE(m47::band::BandCharts, M47_BAND_CHARTS)
