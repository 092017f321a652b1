// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace meter {

/// The meter's end of the line: a pseudo-terminal in raw mode. The other end is kept open here
/// too, so that the line outlives the programs that open and close it.
class PtyLine {
  public:
    /// Opens the line. Throws std::system_error when the system has no pseudo-terminal.
    PtyLine();
    ~PtyLine();

    PtyLine(const PtyLine&) = delete;
    PtyLine& operator=(const PtyLine&) = delete;

    /// Path of the device that programs open.
    const std::string& path() const { return path_; }

    /// True when something has arrived, for which it waits `longest`.
    bool wait_for_input(std::chrono::milliseconds longest) const;

    /// Waits `longest` for the line to take something.
    void wait_for_room(std::chrono::milliseconds longest) const;

    /// Everything that has arrived, without waiting.
    std::string read_pending();

    /// Writes what the line takes at once and says how many bytes that were.
    std::size_t write_some(std::string_view bytes);

    /// True while something has been sent and not been read.
    bool unread() const;

    /// Forgets what has been sent and not been read.
    void discard_unread();

    /// Lifts an exclusive lock that a program left behind when it was killed. A lock whose
    /// holder is still there stays.
    void clear_stale_lock();

    /// Closes the line, as an unplugged cable does.
    void close();

    /// Opens another one after close(), with another path. Throws as the constructor does.
    void open();

  private:
    bool held_by_another_process();

    int master_ = -1;
    int slave_ = -1;
    std::string path_;
    std::string last_holder_;
};

}  // namespace meter
