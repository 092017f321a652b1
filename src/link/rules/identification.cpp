// SPDX-License-Identifier: GPL-3.0-or-later
#include "identification.h"

#include "commands.h"
#include "numbers.h"
#include "work.h"

namespace m47::link {
namespace {

/// From this firmware on only the PLUS model has the satellite locator.
constexpr double kPlusVersion = 300;

constexpr Bilingual kAsking{"Looking for the meter on port %1",
                            "Ricerca dello strumento sulla porta %1"};
constexpr Bilingual kNobody{"the meter on port %1 was not identified",
                            "lo strumento sulla porta %1 non è stato identificato"};
constexpr Bilingual kFound{"the meter on port %1 answers, it was not asked for its version",
                           "lo strumento sulla porta %1 risponde, non è stata chiesta la versione"};

}  // namespace

QStringList port_entries() {
    QStringList entries;
    for (int number = 1; number <= PortList::kPorts; ++number) entries += QString::number(number);
    return entries;
}

double version_number(const QString& reply) {
    // The reply is looked for in "S", not the other way round: the firmware of every meter in the
    // field is told apart by the places that come out of it.
    const qsizetype place = QStringLiteral("S").indexOf(reply, 0, Qt::CaseInsensitive) + 1;
    const QString digits =
        reply.mid(place + 1, 1) + reply.mid(place + 3, 1) + reply.mid(place + 5, 1);
    return meter_value(digits);
}

void Identification::porta_Click(int index) {
    const int number = index + 1;
    close_link(number);
    if (number < 1 || number > PortList::kPorts) return;

    if (number != link_.port_number) link_.forget_late_answers();
    link_.port_number = number;
    device_ = ports_.persistent_name(ports_.device(number));
    caption_ = window_.caption();
    // The dialogue with the meter and all that follows is in English until a language is picked.
    texts_.language = kEnglish;
    if (on_picked) on_picked();
    link_.port().select(ports_.device(number));
    take_line(ports_.device(number));
    ask_meter();
}

void Identification::reconnect() {
    if (link_.port_number == 0) return;
    close_link(link_.port_number);
    window_.set_caption(caption_);
    link_.port().follow(device_);
    if (take_line(device_)) take_another_device();
    ask_meter();
}

/// Whether it is another one is seen before a byte goes out to it.
void Identification::take_another_device() {
    if (link_.port().open()) link_.port().close();
    if (link_.port().fault() != PortFault::another_device) return;
    link_.forget_late_answers();
    if (on_another_device) on_another_device();
    link_.port().select(device_);
}

/// False where another start has the device; its meter is left alone then.
bool Identification::take_line(const QString& device) {
    // Another meter may have been joined to the same line as well.
    link_.settings.forget();
    link_.port_connected = !claim || claim(device);
    if (!link_.port_connected) link_.forget_answer();
    return link_.port_connected;
}

void Identification::ask_meter() {
    const QStringList port{QString::number(link_.port_number)};
    Work work(link_, kNobody, port);
    work.doing(kAsking, port);
    const auto attenuator = link_.ask(command::query(command::kAttenuator));
    show_presence(link_.port_number, !attenuator.value_or(QString()).isEmpty());
    if (link_.port_connected) work.at(kFound, port);
    const auto version = link_.port_connected ? link_.ask(command::query(command::kVersion))
                                              : std::optional<QString>();
    show_version(version.value_or(QString()));
    if (link_.port_connected && on_connected) on_connected();
}

void Identification::close_link(int number) {
    link_.port_connected = false;
    if (link_.port().is_open()) link_.port().close();
    if (link_.port().is_open()) {
        link_.port().close();
        link_.view().set_port_state(port_state_text(number, false), false);
    }
}

void Identification::show_presence(int number, bool present) {
    // An answer without a value is none: whatever hangs there, no command may go out to it.
    link_.port_connected = present;
    if (!present) link_.port().close();
    link_.view().set_port_state(port_state_text(number, present), present);
}

void Identification::show_version(const QString& version) {
    if (on_version) on_version(version);
    window_.set_caption(window_.caption() + u' ' + version);
    if (version_number(version) >= kPlusVersion)
        window_.enable_asl(version.contains(QLatin1String("PLUS")));
}

}  // namespace m47::link
