// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "restore_plan.h"

namespace m47::asl {

/// A satellite of the PC that another program has stored since it was shown here.
struct ChangedSatellite {
    QString name;
    QString stored{};  ///< its data by now
    QString own{};     ///< what is to be stored, or was shown of what is to be deleted
    bool deletes = false;
};

/// What the satellite screen asks and tells its user.
class AslQuestions {
  public:
    virtual ~AslQuestions() = default;

    /// A question with OK and Cancel; true for OK.
    virtual bool confirm(const QString& title, const QString& text) = 0;
    /// A question with Yes and No before something is erased, `what_goes` in smaller letters below;
    /// true for Yes.
    virtual bool erase(const QString& title, const QString& text, const QString& what_goes) = 0;
    /// Asks for one line of text, `proposal` being in the box already; empty when cancelled.
    virtual QString input(const QString& title, const QString& text, const QString& proposal) = 0;
    /// A message with the exclamation icon.
    virtual void warn(const QString& title, const QString& text) = 0;
    /// A message with the information icon.
    virtual void inform(const QString& title, const QString& text) = 0;

    /// Shows both; true where the user's own is stored, or the satellite deleted, all the same.
    virtual bool overwrite(const ChangedSatellite& change) = 0;

    /// The file to save all slots in, or to restore them from; empty when cancelled.
    virtual QString file_to_save() = 0;
    virtual QString file_to_restore() = 0;
    /// Shows what a restore would do to each slot; true when it is to be done.
    virtual bool preview(const RestorePlan& plan) = 0;
};

}  // namespace m47::asl
