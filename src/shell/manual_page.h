// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include "texts.h"

namespace m47::shell {

/// The manual's page about the screen of toolbar key `key`; "index" for any other.
QString manual_page_name(const QString& key);

/// The folders where the manual of a program in the folder `program_folder` may lie, in the order
/// they are looked into: that of the build, that of the installed package.
QStringList manual_folders(const QString& program_folder);

/// The file of page `name` in the current language, from the first of `folders` that has it; empty
/// where none has.
QString find_manual_page(const QStringList& folders, const QString& name, const Texts& texts);

/// What to tell where no folder has the manual.
QString manual_missing_text(const QStringList& folders, const Texts& texts);

}  // namespace m47::shell
