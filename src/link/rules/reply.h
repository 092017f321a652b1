// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace m47::link {

/// Seconds within which the meter answers `command` with "OK" + CR, counted from before sending.
double answer_limit(const QString& command);

/// The payload of the raw answer `raw` to `command`: echo, trailing "OK" and CR removed; "0" for a
/// query whose argument the meter refuses. An answer too short to be cut stays as it is.
QString reduce_answer(const QString& command, const QString& raw);

/// Where in `raw` the answer to `command` begins: at its echo and the CR behind it. -1 where that
/// is not there: what came is the answer to something else, or was spoilt on the way.
qsizetype answer_begin(const QString& command, const QString& raw);

/// The place behind the first "OK" + CR or "ERROR" + CR of `raw`; 0 where there is neither.
qsizetype answer_end(const QString& raw);

/// The raw answer `raw` is framed as the meter does it: it begins with the echo and, to a query,
/// has the end of a line in front of its closing "OK" + CR.
bool well_framed(const QString& command, const QString& raw);

/// Tells from an answer that grows bit by bit whether the meter has refused or accepted the
/// command. It looks at each byte once, so that a long answer in small pieces costs no more than
/// in one.
class ReplyWatch {
  public:
    enum class Verdict { open, error, complete };

    /// `reply` is the whole answer so far: what was passed last time and maybe more behind it.
    Verdict look_at(const QString& reply);

  private:
    qsizetype seen_ = 0;
};

}  // namespace m47::link
