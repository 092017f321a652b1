// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "customer_report.h"
#include "texts.h"
#include "trend_data.h"

namespace m47::report {

/// Writes the report of `page` as a PDF of A4 pages to `path`, whole or not at all: on failure what
/// stood there before still does. `limits` are those of the trend. Nothing on success, else the
/// reason.
QString save_report(const QString& path, const measurement::PageStore& page,
                    const ReportContext& context, const trend::TrendLimits& limits,
                    const Texts& texts);

}  // namespace m47::report
