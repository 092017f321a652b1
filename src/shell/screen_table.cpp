// SPDX-License-Identifier: GPL-3.0-or-later
#include "screen_table.h"

#include "asl.h"
#include "band_sweep.h"
#include "config_set.h"
#include "download.h"
#include "port_setting.h"
#include "program_set.h"
#include "realtime.h"
#include "sites.h"
#include "start_desk.h"
#include "visit_report_dialog.h"

namespace m47::shell {
namespace {

constexpr Bilingual kNoRow{"No row: doubtful answer", "Nessuna riga: risposta dubbia"};
constexpr Bilingual kCutShort{"Pass cut short", "Giro interrotto"};

Screen* make_plans(const ScreenParts& parts) {
    auto* screen = new plans::ProgramSet(parts.connection.link(), parts.state, parts.database);
    QObject::connect(screen, &plans::ProgramSet::upload_state, &parts.window, &M47MDI::show_upload);
    return screen;
}

Screen* make_logger(const ScreenParts& parts) {
    auto* screen = new logger::Download(parts.connection.link(), parts.state);
    QObject::connect(screen, &logger::Download::progress, &parts.window, &M47MDI::show_progress);
    return screen;
}

Screen* make_realtime(const ScreenParts& parts) {
    auto* screen = new realtime::Realtime(std::make_unique<realtime::RealtimeRules>(
        parts.connection.link(), parts.state, parts.database));
    M47MDI* window = &parts.window;
    const Texts* texts = &parts.state.texts;
    screen->add_entries(window->visit_entries());
    // Nothing is done without a visit.
    screen->rules.cycle.on_measured = [&visit = parts.visit, &link = parts.connection.link()](
                                          const measurement::Measurement& measured) {
        visit.take(measured, link.clock().date_time().offsetFromUtc());
    };
    QObject::connect(screen, &realtime::Realtime::progress, window, &M47MDI::show_progress);
    // No box: nobody may be there, and the next pass is not to wait for one.
    QObject::connect(screen, &realtime::Realtime::cut_short, window, [=](const QString& reason) {
        window->show_upload(texts->pick(kCutShort), reason);
    });
    QObject::connect(screen, &realtime::Realtime::left_out, window, &M47MDI::show_notice);
    QObject::connect(screen, &realtime::Realtime::no_row, window, [=](const QString& command) {
        window->show_notice(QStringLiteral("%1 (%2)").arg(texts->pick(kNoRow), command));
    });
    QObject::connect(screen, &QObject::destroyed, window,
                     [window] { window->show_progress(QString()); });
    return screen;
}

Screen* make_satellites(const ScreenParts& parts) {
    return new asl::Asl(parts.connection.link(), parts.state, parts.database.asl());
}

Screen* make_logo(const ScreenParts& parts) {
    return new settings::ConfigSet(parts.connection.link(), parts.state.texts);
}

Screen* make_ports(const ScreenParts& parts) {
    auto* screen =
        new link::PortSetting(parts.connection.identification(), parts.connection.ports());
    // In the handler of its key.
    QObject::connect(screen, &link::PortSetting::simulated_asked, &parts.start,
                     &StartDesk::start_simulated_Click);
    return screen;
}

void tune_to(M47MDI& window, const band::FoundCarrier& found) {
    const auto& [carrier, terms] = found;
    window.open_screen(QStringLiteral("realtime"));
    auto* screen = window.opened<realtime::Realtime>();
    if (!screen) return;
    const double mhz =
        terms.oscillator ? band::sky_frequency(carrier.centre, *terms.oscillator) : carrier.centre;
    screen->tune_to({mhz, terms.oscillator, terms.feed.volts, terms.feed.tone});
}

Screen* make_sweep(const ScreenParts& parts) {
    auto* screen = new band::BandSweep(parts.connection.link(), parts.state, parts.band);
    M47MDI* window = &parts.window;
    QObject::connect(screen, &band::BandSweep::carrier_chosen, window,
                     [window](const band::FoundCarrier& found) { tune_to(*window, found); });
    QObject::connect(screen, &band::BandSweep::programs_wanted, window,
                     [window](const std::vector<plans::ImportCandidate>& programs) {
                         window->open_screen(QStringLiteral("program"));
                         auto* plan = window->opened<plans::ProgramSet>();
                         if (plan) plan->offer_programs(programs);
                     });
    return screen;
}

Screen* make_sites(const ScreenParts& parts) {
    auto* screen = new sites::Sites(parts.sites, parts.state, parts.database);
    screen->set_report([screen, state = &parts.state, sites = &parts.sites](
                           const sites::Site& site, const std::vector<QUuid>& visits) {
        if (const auto store = sites->look())
            sites::show_visit_report(screen, *state, *store, site, visits, screen->code_rates());
    });
    return screen;
}

constexpr ScreenEntry kScreens[] = {
    {"program", "Plan Setup", {"Plans", "Piani"}, Qt::Key_1, KeyBar::commands, "plans", make_plans},
    {"download",
     "Download Data Logged",
     {"Logger", "Logger"},
     Qt::Key_2,
     KeyBar::commands,
     "logger",
     make_logger},
    {"realtime",
     "Real Time Function Mode",
     {"Measure", "Misura"},
     Qt::Key_3,
     KeyBar::commands,
     "measure",
     make_realtime},
    {"asl",
     "Automatic Satellite Locator",
     {"Satellites", "Satelliti"},
     Qt::Key_4,
     KeyBar::commands,
     "satellites",
     make_satellites},
    {"configurazione",
     "Configuration",
     {"Logo", "Logo"},
     Qt::Key_5,
     KeyBar::commands,
     "logo",
     make_logo},
    {"setport",
     "RS232 Port Selection",
     {"Port", "Porta"},
     Qt::Key_6,
     KeyBar::commands,
     "connect",
     make_ports},
    {"band_sweep",
     "Band sweep",
     {"Band", "Banda"},
     Qt::Key_7,
     KeyBar::instruments,
     "sweep",
     make_sweep},
    {"sites", "Sites", {"Sites", "Siti"}, Qt::Key_8, KeyBar::instruments, "sites", make_sites},
};

}  // namespace

std::span<const ScreenEntry> screen_table() {
    return kScreens;
}

QStringList screen_keys() {
    QStringList keys;
    for (const ScreenEntry& screen : kScreens) keys += QString::fromLatin1(screen.key);
    return keys;
}

}  // namespace m47::shell
