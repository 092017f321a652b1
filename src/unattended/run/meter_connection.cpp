// SPDX-License-Identifier: GPL-3.0-or-later
#include "meter_connection.h"

#include "port_diagnosis.h"
#include "port_search.h"

namespace m47::unattended {
namespace {

constexpr Bilingual kLostOver{"The link was lost: %1.", "Il collegamento è caduto: %1."};

}  // namespace

MeterConnection::MeterConnection(ProgramState& state, link::PortList ports,
                                 std::unique_ptr<link::Clock> clock,
                                 std::unique_ptr<link::SerialPort> port, link::LinkView& view,
                                 link::MainWindowView& window)
    : state_(state),
      ports_(std::move(ports)),
      clock_(std::move(clock)),
      port_(std::move(port)),
      recorder_(*clock_),
      line_(*port_, recorder_),
      link_(line_, *clock_, view),
      identification_(link_, state.texts, ports_, window) {
    identification_.claim = [this](const QString& device) { return claim_.take(device); };
    identification_.on_version = [&state](const QString& version) {
        state.meter_version = version;
    };
}

void MeterConnection::identify(int number) {
    ports_.refresh();
    identification_.porta_Click(number - 1);
}

QString MeterConnection::fault() const {
    if (claim_.holder()) return link::claim_text(*claim_.holder(), port_->path(), state_.texts);
    const QString fault = link::port_fault_text(port_->fault(), port_->path(), state_.texts);
    if (!fault.isEmpty() || link_.port_connected) return fault;
    if (!link_.refused().isEmpty())
        return state_.texts.pick(kLostOver).arg(link::refusal_text(link_.refused(), state_.texts));
    // It opens all the same, and the other process takes the answers away.
    return link::other_user_text(port_->path(), state_.texts);
}

}  // namespace m47::unattended
