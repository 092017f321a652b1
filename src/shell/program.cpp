// SPDX-License-Identifier: GPL-3.0-or-later
#include "program.h"

#include <QGuiApplication>
#include <QMdiSubWindow>
#include <QScreen>

#include "handler.h"
#include "port_diagnosis.h"
#include "port_setting.h"
#include "realtime.h"

namespace m47 {
namespace {

constexpr QSize kWindowSize(1100, 720);

/// The child view that holds `screen` closes with it.
template <class Screen>
void close_on_exit(Screen* screen) {
    QObject::connect(screen, &Screen::exit_asked, screen, [screen] {
        if (QWidget* view = screen->parentWidget()) view->close();
    });
}

}  // namespace

Program::Program(ProgramState& state, std::unique_ptr<Database> database, PortList ports)
    : state_(state),
      database_(std::move(database)),
      ports_(std::move(ports)),
      window_(state),
      link_(port_, clock_, window_.status()),
      identification_(link_, state.texts, ports_, window_) {
    // The logger's temporary file has no name yet, and message 0 is composed with that.
    state_.texts.load_messages(QString());
    window_.status().reason = [this] { return link_fault(); };
    add_screens();
    window_.resize(kWindowSize.boundedTo(QGuiApplication::primaryScreen()->availableSize()));
}

Program::~Program() = default;

QString Program::link_fault() const {
    return port_fault_text(port_.fault(), port_.device(), state_.texts);
}

void Program::identify(int number) {
    ports_.refresh();
    identification_.porta_Click(number - 1);
}

Realtime* Program::make_realtime(QWidget* parent) {
    return new Realtime(link_, state_, *database_, parent);
}

void Program::add_screens() {
    window_.add_screen(
        QStringLiteral("realtime"),
        {.create =
             [this] {
                 Realtime* screen = make_realtime(nullptr);
                 close_on_exit(screen);
                 QObject::connect(screen, &Realtime::progress, &window_, &M47MDI::show_progress);
                 QObject::connect(screen, &QObject::destroyed, &window_,
                                  [this] { window_.show_progress(QString()); });
                 return screen;
             },
         .load = [](QWidget* screen) { static_cast<Realtime*>(screen)->Form_Load(); },
         .activate = [](QWidget* screen) { static_cast<Realtime*>(screen)->Form_Activate(); }});
    window_.add_screen(
        QStringLiteral("setport"),
        {.create =
             [this] {
                 auto* screen = new PortSetting(identification_, ports_);
                 close_on_exit(screen);
                 return screen;
             },
         .load = [](QWidget* screen) { static_cast<PortSetting*>(screen)->Form_Load(); },
         .activate = {}});
}

}  // namespace m47
