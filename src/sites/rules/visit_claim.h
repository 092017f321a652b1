// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QUuid>
#include <vector>

#include "claim_file.h"

namespace m47::sites {

/// Says that a visit runs, by a file beside that of the sites: no other process goes on with it
/// meanwhile, and where this one dies the file is left and tells that the visit was cut off. Where
/// the folder takes no such file nothing is said.
class VisitClaim {
  public:
    /// Of visits in the file of sites at `store`.
    explicit VisitClaim(QString store) : store_(std::move(store)) {}

    /// False where another process keeps `visit`.
    bool take(const QUuid& visit);
    /// The visit has ended.
    void release() { file_.release(); }
    /// It is to be gone on with.
    void leave() { file_.leave(); }

    /// The visits of the file of sites at `store` that were cut off, or left, and that nobody goes
    /// on with. Not to be asked while a claim is held: the system would drop it.
    static std::vector<QUuid> left(const QString& store);
    /// Another process keeps `visit` of the file of sites at `store` now. Not to be asked of one
    /// that this process keeps: the system would drop the claim.
    static bool is_kept_elsewhere(const QString& store, const QUuid& visit);
    /// `visit` is not to be told by left() any more.
    static void forget(const QString& store, const QUuid& visit);

  private:
    QString store_;
    platform::ClaimFile file_;
};

}  // namespace m47::sites
