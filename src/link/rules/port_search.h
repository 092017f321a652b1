// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QStringList>
#include <functional>

#include "identification.h"

namespace m47::link {

/// Why nobody may ask behind `device` just now, for the user; empty where it is free. Not asked of
/// a line that this program has open itself.
QString why_not_free(const QString& device, const Texts& texts);

/// That another process has the line `device` open, and which, for the user; empty where none is
/// known. Looks at every process: not to be asked again and again.
QString other_user_text(const QString& device, const Texts& texts);

/// Looks for the meter: asks behind each free port in turn, as picking it does, until one answers.
/// What another program has, or this user may not use, is left alone.
class PortSearch {
  public:
    PortSearch(Link& link, const PortList& ports, const Texts& texts)
        : link_(link), ports_(ports), texts_(texts) {}

    /// Asks behind port `number`, as picking it does.
    std::function<void(int number)> identify;
    /// Why the port that was asked last could not be used; empty where it could.
    std::function<QString()> fault;

    struct Result {
        int found = 0;           ///< number of the port, 0 where none has answered
        int asked = 0;           ///< ports whose meter was given the time to answer
        QStringList left_alone;  ///< a sentence for each of the other ports that have a device
    };

    /// The user may stop it between two ports.
    Result run();

  private:
    QList<int> free_ports(Result& result) const;
    bool ask(int number, Result& result) const;

    Link& link_;
    const PortList& ports_;
    const Texts& texts_;
};

/// What came of it, in the language of `texts`: which ports were left alone and why; empty where
/// the meter was found.
QString search_text(const PortSearch::Result& result, const Texts& texts);

}  // namespace m47::link
