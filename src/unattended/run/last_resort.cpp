// SPDX-License-Identifier: GPL-3.0-or-later
#include "last_resort.h"

#include "end_signals.h"
#include "exit_status.h"
#include "fault.h"
#include "say_on_stderr.h"

namespace m47::unattended {

int with_last_resort(const std::function<int()>& program) {
    try {
        return program();
    } catch (const Interrupted&) {
        return platform::end_signal_status();
    } catch (const std::exception& fault) {
        Texts english;
        english.language = kEnglish;
        say_on_stderr(words_of(fault, english), Subsystem::kEnd);
        return kIncomplete;
    }
}

}  // namespace m47::unattended
