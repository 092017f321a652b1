// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <optional>
#include <string_view>
#include <system_error>

namespace m47::platform {

/// A file that lines are put behind; it is made where it is missing. Its name may be that of a pipe
/// or of a serial device: neither holds the program up. It stays open, and with it a lock on it,
/// for as long as this object lives.
class AppendFile {
  public:
    explicit AppendFile(const QString& path);
    ~AppendFile();
    AppendFile(const AppendFile&) = delete;
    AppendFile& operator=(const AppendFile&) = delete;

    /// Why it cannot be opened.
    std::error_code fault() const { return fault_; }
    /// Of the open file.
    int descriptor() const { return kept_; }

    /// In bytes; nothing for what is not a plain file, such as a pipe or a device.
    std::optional<qint64> length() const;
    /// Its last byte, of `length`; nothing where it cannot be read.
    std::optional<char> last_byte(qint64 length) const;

    /// Puts `bytes` behind it, with the return on the medium; `is_new`: its name too. What went
    /// wrong where something did; a part of `bytes` may be there then. Only once.
    std::error_code append(std::string_view bytes, bool is_new);

    /// Takes back all behind `length`, also after append().
    std::error_code cut_to(qint64 length);

  private:
    std::error_code close_written();

    QString path_;
    int written_ = -1;  ///< closed at the end of append(), which may be the first to tell an error
    int kept_ = -1;     ///< the same opening
    std::error_code fault_;
};

}  // namespace m47::platform
