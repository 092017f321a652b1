// SPDX-License-Identifier: GPL-3.0-or-later
#include "handler.h"

#include <QApplication>
#include <QLoggingCategory>
#include <utility>

#include "fault.h"
#include "message_box.h"
#include "told_lines.h"

namespace m47 {
namespace {

// Silent unless a developer asks: QT_LOGGING_RULES="m47.handler.debug=true".
Q_LOGGING_CATEGORY(kHandlerLog, "m47.handler", QtInfoMsg)

void show_box(QWidget* screen, const QString& what) {
    show_message_box(screen, QMessageBox::Critical, QStringLiteral("M47"), what);
}

FaultReporter& reporter() {
    static FaultReporter current = show_box;
    return current;
}

const Texts*& language_of_faults() {
    static const Texts* texts = nullptr;
    return texts;
}

const char*& innermost() {
    static const char* name = nullptr;
    return name;
}

}  // namespace

void set_fault_reporter(FaultReporter new_reporter) {
    reporter() = std::move(new_reporter);
}

void tell_faults_in(const Texts* texts) {
    language_of_faults() = texts;
}

void report_fault(QWidget* screen, const QString& what) {
    reporter()(screen, what);
}

const char* running_handler() {
    return innermost();
}

void run_handler(QWidget* screen, const char* name, const std::function<void()>& body) {
    tell_handler_watches(name);
    struct Running {
        explicit Running(const char* running) : outer(std::exchange(innermost(), running)) {}
        ~Running() { innermost() = outer; }
        const char* outer;
    } const running(name);
    run_trapped(screen, name, body);
}

void run_trapped(QWidget* screen, const char* name, const std::function<void()>& body) {
    try {
        body();
    } catch (const Interrupted&) {
        // The user ends the program; the handler ends with it.
    } catch (const std::exception& fault) {
        qCDebug(kHandlerLog, "%s: %s", name, fault.what());
        const Texts* texts = language_of_faults();
        const QString words = words_of(fault, texts ? *texts : Texts());
        told_lines().keep(QtCriticalMsg, kHandlerLog().categoryName(),
                          QLatin1String(name) + QStringLiteral(": ") + words);
        report_fault(screen, words);
    }
}

}  // namespace m47
