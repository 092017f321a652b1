// SPDX-License-Identifier: GPL-3.0-or-later
// The trend at a million rows: how long it takes to be made from the page compared with the page's
// own coming back from its log, what a row takes in memory, and how long a frame takes while the
// user pans, for one program and for a plan of thirty. Ends with status 1 when a bound is missed.

#include <malloc.h>
#include <unistd.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <functional>
#include <memory>
#include <vector>

#include "custom_plot.h"
#include "figure.h"
#include "measurement_log.h"
#include "page_model.h"
#include "part.h"
#include "texts.h"
#include "trend_chart.h"

namespace {

constexpr int kRows = 1000000;
constexpr int kRuns = 5;
constexpr int kFrames = 40;
constexpr double kMostTimesTheReload = 5;
constexpr double kMostBytesPerRow = 40;
constexpr double kMostMsPerFrame = 100;
constexpr double kMostTimesTheBareChart = 3;
constexpr QSize kPlotSize(1280, 600);

double resident_bytes() {
    malloc_trim(0);
    long pages = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

double milliseconds(const std::function<void()>& run) {
    QElapsedTimer timer;
    timer.start();
    run();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double median(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

/// A log of a plan of `programs` programs, a row a second, with gaps and failures in it.
bool write_log(const QString& path, int programs) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return false;
    const QDateTime start(QDate(2026, 11, 1), QTime(0, 0), Qt::UTC);
    for (int k = 0; k < kRows; ++k) {
        const QDateTime at = start.addSecs(k);
        const int program = k % programs;
        const double swing = std::sin(k / 5000.0 + program) + std::sin(k * 12.9898) / 4;
        const bool measured = k % 97 != 0;
        const auto text = [measured](double value, char form) {
            return measured ? QByteArray::number(value, form, 1) : QByteArray();
        };
        const QByteArrayList cells{at.toString(QStringLiteral("dd/MM/yy")).toLatin1(),
                                   at.toString(QStringLiteral("HH:mm:ss")).toLatin1(),
                                   QByteArray::number(950 + 30 * program) + ".0",
                                   "10600",
                                   text(58 + program % 7 + 3 * swing, 'f'),
                                   text(std::pow(10.0, -5 + swing), 'E'),
                                   "",
                                   "",
                                   text(13 + swing, 'f'),
                                   "",
                                   k % 7 == 0 ? "FAIL" : "PASS"};
        file.write(cells.join('\t') + "\r\n");
    }
    file.close();
    return file.error() == QFile::NoError;
}

bool measure_build(const QString& path, m47::measurement::PageModel& page) {
    m47::measurement::MeasurementLog log;
    std::vector<double> reloads;
    std::vector<double> builds;
    double resident = 0;
    for (int k = 0; k < kRuns; ++k) {
        page.clear();
        reloads.push_back(milliseconds([&] { log.open(path, page); }));
        const double before = resident_bytes();
        m47::trend::TrendData data;
        builds.push_back(milliseconds([&] { data.update(page.store()); }));
        resident = (resident_bytes() - before) / kRows;
    }
    const double ratio = median(builds) / median(reloads);
    std::printf("  made from the page    %8.1f ms, %.2f of the page's reload (bound %.0f)\n",
                median(builds), ratio, kMostTimesTheReload);
    std::printf("  memory                %8.1f bytes a row (bound %.0f)\n", resident,
                kMostBytesPerRow);
    return page.measurements() == kRows && ratio <= kMostTimesTheReload &&
           resident <= kMostBytesPerRow;
}

/// The median of some frames, each of which shows another part of `all`; the part is `span` long.
double median_frame(QCustomPlot& plot, m47::trend::TrendRange all, double span) {
    std::vector<double> frames;
    for (int k = 0; k < kFrames; ++k) {
        const double lower = all.lower + (all.span() - span) * k / kFrames;
        frames.push_back(milliseconds([&] {
            plot.axisRect()->axis(QCPAxis::atBottom)->setRange(lower, lower + span);
            plot.replot(QCustomPlot::rpQueuedRefresh);
            plot.repaint();
        }));
    }
    return median(frames);
}

/// What the chart library needs for as many points as a window can show, four to a column of
/// pixels, in `charts` charts that hold nothing else.
double bare_frame(m47::trend::TrendRange all, std::size_t charts) {
    QCustomPlot plot;
    plot.plotLayout()->clear();
    QVector<double> times;
    QVector<double> values;
    const int points = 4 * kPlotSize.width();
    for (int k = 0; k < points; ++k) {
        times += all.lower + all.span() * k / points;
        values += k % 4 + std::sin(k / 100.0);
    }
    for (std::size_t chart = 0; chart < charts; ++chart) {
        auto* rect = new QCPAxisRect(&plot);
        plot.plotLayout()->addElement(static_cast<int>(chart), 0, rect);
        QCPGraph* graph = plot.addGraph(rect->axis(QCPAxis::atBottom), rect->axis(QCPAxis::atLeft));
        graph->setAdaptiveSampling(false);
        graph->setData(times, values, true);
        rect->axis(QCPAxis::atBottom)->setRange(all.lower, all.upper);
        rect->axis(QCPAxis::atLeft)->setRange(-1, 5);
    }
    plot.resize(kPlotSize);
    plot.show();
    plot.replot();
    return median_frame(plot, all, all.span());
}

/// Pans with the keyboard, zoomed so that `share` of the rows is in sight.
bool measure_frames(const m47::measurement::PageModel& page, double share, bool one_program) {
    m47::trend::TrendData data;
    data.update(page.store());
    const m47::Texts texts;
    m47::Part part(m47::trend::kTrendPart);
    auto* const charts = part.offer<m47::trend::TrendCharts>();
    if (!charts) return false;
    const auto limits = [](m47::measurement::Quantity) {
        return std::optional<m47::trend::TrendRange>({1e-4, 60});
    };
    const std::unique_ptr<m47::trend::TrendChart> chart(charts->make(data, limits, texts));
    auto& plot = static_cast<QCustomPlot&>(*chart->widget());
    plot.resize(kPlotSize);
    plot.show();
    chart->rows_came();
    plot.replot();
    const m47::trend::TrendRange all = data.time();
    const double frame = median_frame(plot, all, all.span() * share);
    std::printf("  a frame, %5.1f %% seen %8.1f ms (bound %.0f)\n", share * 100, frame,
                kMostMsPerFrame);
    if (one_program && share == 1.0)
        bench::print_figure("trend redraw, 1,000,000 points in sight",
                            frame / bare_frame(all, m47::measurement::kQuantities.size()),
                            kMostTimesTheBareChart, "the bare chart with 4 points a column");
    return frame <= kMostMsPerFrame;
}

bool measure(const QString& path, int programs) {
    std::printf("1,000,000 rows of %d program(s), %dx%d pixels\n", programs, kPlotSize.width(),
                kPlotSize.height());
    if (!write_log(path, programs)) return false;
    m47::measurement::PageModel page;
    bool good = measure_build(path, page);
    for (const double share : {1.0, 0.1, 0.001})
        good = measure_frames(page, share, programs == 1) && good;
    return good;
}

}  // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("million.log"));
    const bool one = measure(path, 1);
    const bool plan = measure(path, 30);
    std::puts(one && plan ? "within the bounds" : "A BOUND IS MISSED");
    return one && plan ? 0 : 1;
}
