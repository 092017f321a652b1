// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include "plain_file.h"

namespace m47 {

/// Puts `bytes` as a file in the place of what stood at `path` before, whole or not at all: the
/// older file stands until the new one is whole on the disk, so the folder has to take a second
/// file. Nothing but a plain file is replaced: neither a folder, a pipe or a device nor, where
/// links are refused, a link; where they are followed the file that it names is written. With the
/// return file and name are on the medium: what may be erased for them can be. Nothing on success,
/// else the reason; where the folder alone could not be written out, the new file is there.
QString write_whole_file(const QString& path, const QByteArray& bytes,
                         platform::Links links = platform::Links::followed);

}  // namespace m47
