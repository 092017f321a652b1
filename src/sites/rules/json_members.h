// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QUuid>
#include <QVarLengthArray>
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
    /// The object of the whole file.
    explicit JsonMembers(const QJsonValue& value) : JsonMembers(value, nullptr, "", -1) {}
    /// The member `name` of `parent`, which has to outlive this, or its object number `index`.
    JsonMembers(const QJsonValue& value, const JsonMembers* parent, const char* name,
                qsizetype index = -1);

    bool has(const char* name) const { return object_.contains(QLatin1String(name)); }
    QString text(const char* name);                           ///< empty where it is not there
    QUuid id(const char* name);                               ///< has to be there
    double number(const char* name, double from, double to);  ///< has to be there
    std::optional<double> number_if(const char* name, double from, double to);
    int whole(const char* name, int from, int to);  ///< has to be there
    QJsonArray array(const char* name);             ///< empty where it is not there
    std::optional<JsonMembers> object_if(const char* name);
    JsonMembers object(const char* name);  ///< has to be there

    void done() const;

    [[noreturn]] void refuse(const char* name) const;

  private:
    /// Undefined where it is not there.
    QJsonValue take(const char* name);

    /// Where the object is in the file, "sites[0].visits[2]"; made when it is told.
    QString place() const;
    QString place(const QString& name) const;
    /// How many names have room without an allocation: no object has more members.
    static constexpr int kMembers = 16;

    QJsonObject object_;
    const JsonMembers* parent_;
    const char* name_;
    qsizetype index_;
    QVarLengthArray<const char*, kMembers> taken_;  ///< of those that are there
};

}  // namespace m47::sites
