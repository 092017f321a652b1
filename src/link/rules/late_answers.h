// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace m47::link {

/// Answers that the meter may still send although nobody waits for them any more: a command that
/// was asked again because its answer was late is answered twice. The protocol numbers nothing, so
/// the echo in front of an answer is all that tells whose it is. Times are seconds of
/// Clock::steady().
class LateAnswers {
  public:
    /// `command` goes out: its echo is known from now on.
    void asked(const QString& command);

    /// From `now` on `count` answers (none for 0 or less) to `command` may come until `until`.
    void expect(const QString& command, int count, double now, double until);

    /// An answer has come that nobody waits for; its first line tells to which command.
    void came(const QString& answer);

    /// Some answer may still come at `now`.
    bool may_come(double now) const;
    /// An answer to `command` may.
    bool may_come(const QString& command, double now) const;

    /// The answer begins with the echo of another command than `command` that went out lately.
    bool is_to_another(const QString& answer, const QString& command) const;

  private:
    struct Late {
        QString command;
        int count;
        double until;
    };
    std::vector<Late> late_;
    QStringList asked_;  ///< the last commands that went out, each once
};

}  // namespace m47::link
