// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The chart library's header is written with Qt's keywords, which this program does without.
#define signals Q_SIGNALS
#define foreach Q_FOREACH
#include <qcustomplot.h>
#undef signals
#undef foreach
