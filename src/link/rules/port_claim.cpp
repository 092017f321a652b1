// SPDX-License-Identifier: GPL-3.0-or-later
#include "port_claim.h"

#include <utility>

namespace m47::link {
namespace {

constexpr Bilingual kClaimed{
    "%1 is in use by %2 (process %3). End that program or choose another port.",
    "%1 è usato da %2 (processo %3). Chiudere quel programma o scegliere un'altra porta."};
// By a process of another name space, which has no number here.
constexpr Bilingual kClaimedUnseen{
    "%1 is in use by another start of this program. End that or choose another port.",
    "%1 è usato da un altro avvio di questo programma. Chiuderlo o scegliere un'altra porta."};

}  // namespace

PortClaim::PortClaim(QStringList folders) : folders_(std::move(folders)) {}

QStringList PortClaim::usual_folders() {
    return {QStringLiteral("/run/lock"), QStringLiteral("/tmp")};
}

bool PortClaim::take(const QString& device) {
    release();
    const std::optional<QString> name = platform::name_of_device(device);
    if (!name) return true;
    for (const QString& folder : std::as_const(folders_))
        if (file_.take(folder + QStringLiteral("/m47-remote-") + *name + QStringLiteral(".lock")) ||
            holder())
            break;
    return !holder();
}

QString claim_text(const platform::RunningProcess& holder, const QString& device,
                   const Texts& texts) {
    if (holder.program.isEmpty()) return texts.pick(kClaimedUnseen).arg(device);
    return texts.pick(kClaimed).arg(device, holder.program, QString::number(holder.process));
}

}  // namespace m47::link
