// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The chart library's header is written with Qt's keywords, which this program does without.
#define signals Q_SIGNALS
#define slots Q_SLOTS
#define foreach Q_FOREACH
#include <qcustomplot.h>
#undef signals
#undef slots
#undef foreach
