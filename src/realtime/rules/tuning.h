// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "link.h"
#include "realtime_panel.h"

namespace m47 {

/// The tuning controls of the real-time screen: each brings the confirmed value into its range,
/// writes it back and sends it. No handler checks the answer; the control keeps what was sent.
class Tuning {
  public:
    Tuning(Link& link, RealtimePanel& panel, RealtimeState& state)
        : link_(link), panel_(panel), state_(state) {}

    // The text boxes act on kEnterKey only; every other key is the box's own.
    void fsat_KeyPress(int key);
    void ol_freq_KeyPress(int key);
    void srqpsk_txt_KeyPress(int key);
    void chbws_KeyPress(int key);

    /// `index` 0: no local oscillator, 1: through the one of `ol_freq`. Reads the tuned frequency
    /// back into `fsat`, during a recall too.
    void locopt_Click(int index);
    /// `index` of the entry "OFF", "13V", "18V".
    void satlnb_state_Click(int index);
    /// `index` of the entry "OFF", "13V", "15V", "18V", "24V".
    void lnb_supply_Click(int index);
    /// `index` of the entry "ON", "OFF".
    void k22_state_Click(int index);

    /// A list whose entries are numbered like the argument of the meter's command `word`: sends the
    /// entry, asks back and returns the entry that the meter accepted; `index` where there is no
    /// answer or none of the `count` entries fits it.
    int list_Click(const QString& word, int index, int count);

    /// The boxes of the noise frequency start from the present frequency where nothing is in them.
    void start_noise_boxes();

    /// `text` (MHz) inside the range of the present oscillator choice, formatted for the meter.
    QString checked_frequency(const QString& text) const;

  private:
    void send_supply(int volts);

    Link& link_;
    RealtimePanel& panel_;
    RealtimeState& state_;
};

}  // namespace m47
