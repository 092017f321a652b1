// SPDX-License-Identifier: GPL-3.0-or-later
#include "port_search.h"

#include "port_diagnosis.h"
#include "port_lock.h"
#include "running_process.h"
#include "work.h"

namespace m47::link {
namespace {

constexpr Bilingual kSearching{"Looking for the meter on port %1 (%2 of %3)",
                               "Ricerca dello strumento sulla porta %1 (%2 di %3)"};
constexpr Bilingual kNotFoundYet{"the meter was not found on %1 of %2 ports",
                                 "strumento non trovato su %1 porte di %2"};
constexpr Bilingual kNoneAsked{
    "No port could be asked: none has a device that is free. Plug the adapter in, then search "
    "again.",
    "Nessuna porta da interrogare: nessuna ha un dispositivo libero. Collegare l'adattatore, poi "
    "cercare ancora."};
constexpr Bilingual kNotFound{"No meter answered. Is it switched on and its cable plugged in?",
                              "Nessuno strumento ha risposto. È acceso e il cavo è collegato?"};
constexpr Bilingual kLeftAlone{"Port %1 was not asked: %2", "Porta %1 non interrogata: %2"};
constexpr Bilingual kOpenElsewhere{
    "%1 is open in another process: %2, number %3. End that or choose another port.",
    "%1 è aperto in un altro processo: %2, numero %3. Chiuderlo o scegliere un'altra porta."};

}  // namespace

QString why_not_free(const QString& device, const Texts& texts) {
    const PortFault fault = look_at(device);
    if (fault != PortFault::none) return port_fault_text(fault, device, texts);
    if (lock_file_holder(lock_file_of(device)))
        return port_fault_text(PortFault::busy, device, texts);
    return other_user_text(device, texts);
}

QString other_user_text(const QString& device, const Texts& texts) {
    const auto user = platform::other_user_of_line(device);
    if (!user) return {};
    return Said{kOpenElsewhere, {device, user->program, QString::number(user->process)}}.in(texts);
}

QList<int> PortSearch::free_ports(Result& result) const {
    QList<int> numbers;
    for (int number = 1; number <= PortList::kPorts; ++number) {
        const QString device = ports_.device(number);
        if (device.isEmpty()) continue;
        const QString reason = why_not_free(device, texts_);
        if (reason.isEmpty())
            numbers += number;
        else
            result.left_alone += Said{kLeftAlone, {QString::number(number), reason}}.in(texts_);
    }
    return numbers;
}

PortSearch::Result PortSearch::run() {
    Result result;
    const QList<int> numbers = free_ports(result);
    const QString all = QString::number(numbers.size());
    Work work(link_, kNotFoundYet, {QString::number(0), all});
    for (const int number : numbers) {
        link_.end_when_interrupted();
        work.doing(kSearching, {QString::number(number), QString::number(result.asked + 1), all});
        if (ask(number, result)) break;
        work.at(kNotFoundYet, {QString::number(result.asked), all});
    }
    return result;
}

/// True when the meter behind port `number` answers.
bool PortSearch::ask(int number, Result& result) const {
    identify(number);
    const QString reason = link_.port_connected || !fault ? QString() : fault();
    if (reason.isEmpty())
        ++result.asked;
    else
        result.left_alone += Said{kLeftAlone, {QString::number(number), reason}}.in(texts_);
    if (link_.port_connected) result.found = number;
    return link_.port_connected;
}

QString search_text(const PortSearch::Result& result, const Texts& texts) {
    if (result.found > 0) return {};
    const Bilingual& words = result.asked > 0 ? kNotFound : kNoneAsked;
    return (QStringList{texts.pick(words)} + result.left_alone).join(u'\n');
}

}  // namespace m47::link
