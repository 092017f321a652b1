// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "link.h"

namespace m47::link {

/// A piece of work of more than one exchange. Where the program is told to end in it,
/// Link::left_off says afterwards how far it came; where the user stops it, Activity tells that.
/// Within another one it says nothing: the outer one is what the user began.
class Work {
  public:
    /// It begins with `words`, how far it is then.
    Work(Link& link, const Bilingual& words, const QStringList& values = {});
    /// What has been finished is no longer told, unless the program was told to end meanwhile.
    ~Work();
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    /// It is as far as `words` say.
    void at(const Bilingual& words, const QStringList& values = {});

    /// What it does now, for whoever watches: "Uploading program %1 of %2". Work that says nothing
    /// is not shown, nor can it be stopped.
    void doing(const Bilingual& words, const QStringList& values = {});
    /// It is done for a screen alone: who closes a window meanwhile wants it to stop.
    void ends_with_window() {
        if (outermost_) link_.activity.end_with_window();
    }
    /// `done` of `all` steps that take about as long as each other.
    void reached(int done, int all);

  private:
    Link& link_;
    bool outermost_;
};

/// Exchanges that belong together, such as a satellite's block and its name. Told to end, the
/// program ends before the first of them, with Interrupted, or behind the last.
class Undivided {
  public:
    explicit Undivided(Link& link) : link_(link) {
        link_.end_when_interrupted();
        ++link_.undivided;
    }
    ~Undivided() { --link_.undivided; }
    Undivided(const Undivided&) = delete;
    Undivided& operator=(const Undivided&) = delete;

  private:
    Link& link_;
};

/// Exchanges that leave the meter in order behind work that has ended, also where it was told to:
/// they are put through all the same. Told once more, the program breaks them off too.
class InOrder {
  public:
    explicit InOrder(Link& link) : link_(link) {
        ++link_.undivided;
        ++link_.in_order;
    }
    ~InOrder() {
        --link_.undivided;
        if (--link_.in_order > 0 || !link_.gone_on_) return;
        link_.gone_on_ = false;
        link_.port_connected = false;
    }
    InOrder(const InOrder&) = delete;
    InOrder& operator=(const InOrder&) = delete;

  private:
    Link& link_;
};

/// Sends what the meter has to be told whatever has happened, the program's end included; without a
/// line there is nobody to tell. True when the meter has taken it.
bool send_at_the_end(Link& link, const QString& command) noexcept;

}  // namespace m47::link
