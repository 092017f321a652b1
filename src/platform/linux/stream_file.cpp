// SPDX-License-Identifier: GPL-3.0-or-later
#include "stream_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <QFile>

#include "descriptor_io.h"
#include "system_error.h"

namespace m47::platform {

StreamFile::StreamFile(const QString& path)
    : descriptor_(::open(QFile::encodeName(path).constData(),
                         O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666)) {
    if (descriptor_ < 0) fault_ = last_error();
}

StreamFile::~StreamFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

std::error_code StreamFile::put(std::string_view bytes) const noexcept {
    return fault_ ? fault_ : write_all(descriptor_, bytes);
}

}  // namespace m47::platform
