// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <string_view>

#include "page_model.h"

namespace m47::measurement {

/// The log of the measurements: a text file of one line of 11 TAB-separated Latin-1 fields per row,
/// each ended by CR LF, with no header line. The file is only held open while it is read or
/// written.
class MeasurementLog {
  public:
    /// True from open() to close(), whether or not the file exists yet.
    bool log_open() const { return log_open_; }

    /// The name of the file last opened.
    const QString& path() const { return path_; }

    /// Starts logging to `path` and replaces the measurements on `page` by the lines of that file;
    /// a line ends at CR, LF or CR LF. A file that cannot be read leaves the page alone: a new name
    /// is created by the first append(), and so does one above 1 GiB. A line of more than 11
    /// fields, or one that is no text line at all (256 KiB and more), ends the reading without a
    /// word; what came before it stays, and so do the first 11 fields. An empty path opens nothing.
    void open(const QString& path, PageModel& page);

    /// Stops logging; neither the file nor the page is touched.
    void close() { log_open_ = false; }

    /// Adds one line (without its line end) to the file, creating it where there is none; a file
    /// that breaks off within a line gets a line end first. On false nothing has been added, not
    /// half a line either, and reason() says why. Other programs may append to the same file: each
    /// line stays whole, and so does what they have written.
    bool append(std::string_view line);

    /// Why the last append() failed; empty after one that succeeded and for a log just opened.
    const QString& reason() const { return reason_; }

  private:
    bool failed(const QString& reason);

    QString path_;
    bool log_open_ = false;
    QString reason_;
};

}  // namespace m47::measurement
