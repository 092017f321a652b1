// SPDX-License-Identifier: GPL-3.0-or-later
// The start of the program, from the call to its first painted window, and the memory it then has
// in use, against a bare main window with an empty area for child windows.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "figure.h"

namespace {

constexpr int kStarts = 15;
constexpr double kMostTimesTheBareWindow = 1.9;
constexpr double kMostTimesTheWindowWithText = 1.5;
constexpr double kMostTimesItsMemory = 1.35;

struct Starts {
    std::vector<double> ms;
    std::vector<double> bytes;
};

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// False when the program did not come up.
bool start_once(const QString& program, const QStringList& arguments, Starts& starts) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QElapsedTimer timer;
    timer.start();
    process.start(program, arguments);
    while (!process.canReadLine())
        if (!process.waitForReadyRead()) return false;
    starts.ms.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    starts.bytes.push_back(process.readLine().trimmed().toDouble());
    return process.waitForFinished() && process.exitCode() == 0;
}

void print(const char* what, const Starts& starts) {
    std::printf("%-20s %7.1f ms to the first painted window, %6.1f MiB in use\n", what,
                median(starts.ms), median(starts.bytes) / (1 << 20));
}

}  // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    const QStringList arguments{QStringLiteral("--directory"), folder.path(),
                                QStringLiteral("--create-database")};
    Starts program;
    Starts bare;
    Starts with_text;
    // By turns, so that what else runs weighs on both alike.
    for (int k = 0; k < kStarts; ++k)
        if (!start_once(QStringLiteral(START_PROGRAM), arguments, program) ||
            !start_once(QStringLiteral(START_BARE), {}, bare) ||
            !start_once(QStringLiteral(START_BARE), {QStringLiteral("Ready")}, with_text))
            return 1;
    print("program", program);
    print("bare window", bare);
    print("... with a word in it", with_text);
    const char* const window = "bare main window with an empty QMdiArea";
    bench::print_figure("start-up to the first painted window",
                        median(program.ms) / median(bare.ms), kMostTimesTheBareWindow, window);
    bench::print_figure("the same, with text in that", median(program.ms) / median(with_text.ms),
                        kMostTimesTheWindowWithText, "bare main window with one word in it");
    bench::print_figure("memory after start-up", median(program.bytes) / median(bare.bytes),
                        kMostTimesItsMemory, window);
    return 0;
}
