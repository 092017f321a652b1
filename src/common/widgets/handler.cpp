// SPDX-License-Identifier: GPL-3.0-or-later
#include "handler.h"

#include <QApplication>
#include <QMessageBox>

#include "fault.h"

namespace m47 {
namespace {

void show_box(QWidget* screen, const QString& what) {
    QMessageBox::critical(screen, QStringLiteral("M47"), what);
}

FaultReporter& reporter() {
    static FaultReporter current = show_box;
    return current;
}

}  // namespace

void set_fault_reporter(FaultReporter new_reporter) {
    reporter() = std::move(new_reporter);
}

void report_fault(QWidget* screen, const QString& what) {
    reporter()(screen, what);
}

void run_handler(QWidget* screen, const char* name, const std::function<void()>& body) {
    try {
        body();
    } catch (const Interrupted&) {
        // The user ends the program; the handler ends with it.
    } catch (const std::exception& fault) {
        report_fault(screen, QString::fromLatin1(name) + QStringLiteral(": ") +
                                 QString::fromUtf8(fault.what()));
    }
}

}  // namespace m47
