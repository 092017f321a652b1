// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlError>
#include <QString>
#include <QtGlobal>
#include <array>
#include <cstddef>
#include <optional>

#include "statement_fault.h"

namespace m47 {

/// What the engine of the database can answer to a call that was right.
inline constexpr std::array<int, 6> kEngineCodes{
    5,   // BUSY
    10,  // IOERR
    13,  // FULL
    11,  // CORRUPT
    7,   // NOMEM
    8,   // READONLY
};

/// While it lives the n-th call of the database engine (from 1) fails with `code`, and no other.
class FailingStatement {
  public:
    FailingStatement(int nth, int code) {
        db::set_statement_fault([this, nth, code](const QString&) -> std::optional<QSqlError> {
            if (++calls_ != nth) return std::nullopt;
            return QSqlError(QString(), QStringLiteral("failed on purpose"),
                             QSqlError::StatementError, QString::number(code));
        });
    }
    ~FailingStatement() { db::set_statement_fault({}); }
    FailingStatement(const FailingStatement&) = delete;
    FailingStatement& operator=(const FailingStatement&) = delete;

    int calls() const { return calls_; }

  private:
    int calls_ = 0;
};

/// Calls `attempt(nth, code)` for the 1st, 2nd, … call of the engine until an attempt comes by
/// fewer calls: it answers how many it has made. By default one code after the other, one for each
/// place; with M47_ALL_STATEMENTS in the environment every code at every place.
template <class Attempt>
void fail_each_statement(Attempt attempt) {
    const bool all = qEnvironmentVariableIsSet("M47_ALL_STATEMENTS");
    for (int nth = 1;; ++nth) {
        int calls = 0;
        for (std::size_t k = 0; k < kEngineCodes.size(); ++k) {
            const bool in_turn = static_cast<std::size_t>(nth) % kEngineCodes.size() == k;
            if (all || in_turn) calls = attempt(nth, kEngineCodes[k]);
        }
        if (calls < nth) return;
    }
}

}  // namespace m47
