// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace m47 {

/// Who uses the program, as far as it shows in what the program writes.
struct Person {
    QStringList homes;  ///< the home folder by each of its names, absolute
    QString login;

    /// The user of this process.
    static Person here();
};

/// `text` without the person: "~" for the home folder, "user" for the login where it stands as a
/// word of its own. The login of the administrator tells nothing and stays.
QString impersonal(QString text, const Person& person);

/// A recording of the line; what went over the line stays as it is.
QByteArray impersonal_recording(const QByteArray& recording, const Person& person);

/// A file of preferences: none of its values that name a file or a folder, which may have the names
/// of customers.
QString impersonal_preferences(const QString& text, const Person& person);

}  // namespace m47
