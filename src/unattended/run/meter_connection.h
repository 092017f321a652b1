// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "identification.h"
#include "link.h"
#include "port_claim.h"
#include "port_list.h"
#include "program_state.h"
#include "recording_port.h"
#include "serial_port.h"

namespace m47::unattended {

/// The way to the meter, with windows or without: the ports of this machine, the line and who may
/// use it, the link, and who the meter behind it is.
class MeterConnection {
  public:
    /// What a user would see of it goes to `view` and `window`.
    MeterConnection(ProgramState& state, link::PortList ports, std::unique_ptr<link::Clock> clock,
                    std::unique_ptr<link::SerialPort> port, link::LinkView& view,
                    link::MainWindowView& window);
    MeterConnection(const MeterConnection&) = delete;
    MeterConnection& operator=(const MeterConnection&) = delete;

    link::Link& link() { return link_; }
    const link::Link& link() const { return link_; }
    link::PortList& ports() { return ports_; }
    link::Identification& identification() { return identification_; }
    /// Writes down what happens on the line, once it is told where to.
    link::LineRecorder& recorder() { return recorder_; }

    /// Identifies the meter on port `number` (1 to 10), as picking it on the port screen does.
    void identify(int number);

    /// Identifies the meter behind the device picked last again.
    void reconnect() { identification_.reconnect(); }

    /// The device picked last, by its persistent name where it has one; empty before the first.
    const QString& device() const { return identification_.device(); }

    /// True when the link was lost because another device stands in the place of the one that was
    /// identified.
    bool other_device() const { return port_->fault() == link::PortFault::another_device; }

    /// Why the port cannot be used, for the user; empty where nothing is known against it.
    QString fault() const;

  private:
    const ProgramState& state_;
    link::PortList ports_;
    std::unique_ptr<link::Clock> clock_;
    std::unique_ptr<link::SerialPort> port_;
    link::LineRecorder recorder_;
    link::RecordingPort line_;
    link::Link link_;
    link::PortClaim claim_;
    link::Identification identification_;
};

}  // namespace m47::unattended
