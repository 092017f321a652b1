// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

namespace m47::publish {

/// The environment's name for what --publish-token-file holds.
inline constexpr const char* kTokenVariable = "M47_PUBLISH_TOKEN";

/// Where an engine takes rows; without a path its usual one, /write. Empty with `error`, a
/// sentence without what was given, where it is no such address: what others can read on the
/// command line must hold no password.
QUrl publish_address(const QString& text, QString& error);

/// The header's value for what a file or the environment holds: a token, or "user:password". Empty
/// where there is nothing.
QByteArray authorization(const QByteArray& secret);

/// Reads what the first line of the file `path` holds; empty with `error`, a sentence, where it
/// cannot be read or holds nothing.
QByteArray read_secret(const QString& path, QString& error);

/// The bytes in "512M", "1G", "900k" or a plain number; 0 where it is none, or not from 1 MiB to
/// 1 TiB.
qint64 outbox_limit(const QString& text);

}  // namespace m47::publish
