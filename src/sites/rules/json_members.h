// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QSet>
#include <QString>
#include <QUuid>
#include <optional>

#include "texts.h"

namespace m47::sites {

/// Thrown where a file of sites is none; never leaves its reader.
struct Refused {
    Said why;
};

/// The members of an object of a file of sites, each asked for once by its name. What is not there
/// though it has to be, of another type or beyond its bounds is Refused, and so is what nobody has
/// asked for when done() is called.
class JsonMembers {
  public:
    /// `where` is the object's place in the file, "sites[0].visits[2]".
    JsonMembers(const QJsonValue& value, const QString& where);

    bool has(const char* name) const { return object_.contains(QLatin1String(name)); }
    QString text(const char* name);                           ///< empty where it is not there
    QUuid id(const char* name);                               ///< has to be there
    double number(const char* name, double from, double to);  ///< has to be there
    std::optional<double> number_if(const char* name, double from, double to);
    int whole(const char* name, int from, int to);  ///< has to be there
    QJsonArray array(const char* name);             ///< empty where it is not there
    std::optional<JsonMembers> object_if(const char* name);
    JsonMembers object(const char* name);  ///< has to be there
    /// The names of all members.
    QStringList names() const { return object_.keys(); }

    void done() const;

    QString place(const char* name) const;
    [[noreturn]] void refuse(const char* name) const;

  private:
    /// Undefined where it is not there.
    QJsonValue take(const char* name);

    QJsonObject object_;
    QString where_;
    QSet<QString> taken_;
};

}  // namespace m47::sites
