// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "alarm_limits.h"
#include "ask_twice.h"
#include "link.h"
#include "measurement.h"
#include "measures.h"
#include "program_state.h"
#include "realtime_panel.h"
#include "tuning.h"

namespace m47::realtime {

/// The measurement steps: each sends its commands, shows the value in its result label at once and
/// hands the number to the limit check. None reports a failed command: it parses what stands in the
/// answer. A step whose answer or frequency entry is missing ends in a Fault, which ends the cycle;
/// one whose answer can be no value in a DoubtfulAnswer. Asking twice is the user's choice: what
/// surprises is asked again, and counts when two answers agree.
class MeasureSteps {
  public:
    MeasureSteps(link::Link& link, ProgramState& program, RealtimePanel& panel,
                 RealtimeState& state, Tuning& tuning)
        : link_(link), program_(program), panel_(panel), state_(state), tuning_(tuning) {}

    /// Run to restore the user's level unit after a reading in dBuV: the unit menu's handler.
    std::function<void(int)> cmdlev_Click;

    /// C/N and noise are measured whether or not the user has chosen them complete.
    bool complete = false;
    /// What the steps have measured, and against which limits, since it was last made anew.
    measurement::Measurement outcome;
    /// What a limit box with nothing in it means, by the user's choice.
    EmptyLimits empty_limits() const {
        return program_.corrected.empty_alarm ? EmptyLimits::none : EmptyLimits::zero;
    }

    /// Sets the meter's attenuator for a level reading: one step more when the level asks for it.
    void format_att();

    void carr_satdig();      ///< digital channel power, dB of the unit in force
    void level_satdig();     ///< the same behind the attenuator as it stands
    void cn_satdig();        ///< digital C/N, dB
    void ask_cn_satdig();    ///< the same where attenuator and marker stand already
    void levn_satdig();      ///< digital noise
    void qpsk_real();        ///< CHBER, PvBER, CFO, MER
    void start_qpsk();       ///< tunes and brings the meter into its QPSK mode
    void digital_acquire();  ///< reads CHBER, PvBER, CFO, MER
    void carr_satanl();      ///< analog carrier level, dB of the unit in force
    void level_satanl();     ///< the same behind the attenuator as it stands
    void cn_satanl();        ///< analog C/N, dB
    void ask_cn_satanl();    ///< the same where attenuator and marker stand already
    void levn_satanl();      ///< analog noise

  private:
    void check(AlarmRow row, double value);
    void keep(measurement::Quantity quantity, const QString& answered);
    using ValuesIn = std::function<measurement::AskedValues(const QString& reply)>;

    /// Sends `question` and tells what stands as the answer then, whether or not there was one.
    /// Where the user has chosen so and what `values_in` finds in it surprises, again, until two
    /// answers agree, which gives the later one; a DoubtfulAnswer when none do.
    QString ask(const QString& question, const ValuesIn& values_in);
    /// As ask, for a question with one value, of which `text_in` cuts the text out.
    QString ask_one(const QString& question, measurement::AskedFor asked,
                    const std::function<QString(const QString& reply)>& text_in);
    void confirm(const ValuesIn& values_in);
    bool surprising(const measurement::AskedValues& readings) const;
    void remember(const measurement::AskedValues& readings);
    /// Whose readings are compared with each other.
    QString program_key() const;
    measurement::AskedValue value_in(measurement::AskedFor asked, const QString& text) const;
    measurement::AskedValues quality_in(const QString& reply) const;
    /// A text that can be none of what was asked is a DoubtfulAnswer.
    void expect(measurement::AskedFor asked, const QString& text) const;
    QString& noise_entry(QString& entry) const;
    QString noise_frequency(QString& entry) const;
    void show_field(const Measure& measure, const QString& answer);

    link::Link& link_;
    ProgramState& program_;
    RealtimePanel& panel_;
    RealtimeState& state_;
    Tuning& tuning_;
    measurement::Scatter scatter_;
    QString question_;  ///< asked last
};

}  // namespace m47::realtime
