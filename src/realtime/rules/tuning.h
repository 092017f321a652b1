// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <optional>

#include "link.h"
#include "program_state.h"
#include "realtime_panel.h"

namespace m47::realtime {

/// A carrier to be tuned to: MHz in the sky where there is an oscillator, else of the intermediate
/// band. What is not told of the LNB stays as it is.
struct WantedCarrier {
    double mhz = 0;
    std::optional<double> oscillator{};  ///< MHz
    std::optional<int> volts{};          ///< 0, 13 or 18
    std::optional<bool> tone{};
    std::optional<double> symbol_rate{};  ///< MS/s, of one that is to lock
};

/// The tuning controls of the real-time screen: each brings the confirmed value into its range,
/// writes it back and sends it. No handler checks the answer; the control keeps what was sent.
class Tuning {
  public:
    Tuning(link::Link& link, ProgramState& program, RealtimePanel& panel, RealtimeState& state)
        : link_(link), program_(program), panel_(panel), state_(state) {}

    // The text boxes act on kEnterKey only; every other key is the box's own.
    void fsat_KeyPress(int key);
    void ol_freq_KeyPress(int key);
    void srqpsk_txt_KeyPress(int key);
    void chbws_KeyPress(int key);

    /// `index` 0: no local oscillator, 1: through the one of `ol_freq`. Reads the tuned frequency
    /// back into `fsat`, during a recall too.
    void locopt_Click(int index);
    /// Sets the controls for `carrier` and sends them as somebody does who enters it: LNB, tone,
    /// oscillator, frequency, symbol rate.
    void tune_to(const WantedCarrier& carrier);

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

    /// Both boxes of the noise frequency start from the present frequency.
    void start_noise_boxes();

    /// The noise frequency to send for the box `entry`, in range. A box that holds no frequency
    /// gets the present one; a bound is never written into it.
    QString noise_frequency(QString& entry) const;

    /// Puts `answer`, that to a query, into `box`. One that is no number above 0 empties it, or
    /// leaves it where the user has chosen that; when it is lost `cost` is told.
    void show_answer(const std::optional<QString>& answer, QString& box, const Bilingual& cost);

    /// `text` (MHz) as the bandwidth that is sent, 5 to 36 in two digits.
    static QString checked_bandwidth(const QString& text);

    /// `text` (MHz) inside the range of the present oscillator choice, formatted for the meter.
    QString checked_frequency(const QString& text) const;

  private:
    void send_supply(int volts);

    link::Link& link_;
    ProgramState& program_;
    RealtimePanel& panel_;
    RealtimeState& state_;
};

}  // namespace m47::realtime
