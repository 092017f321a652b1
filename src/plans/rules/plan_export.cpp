// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_export.h"

#include <QFileInfo>

#include "plan_file.h"
#include "save_file.h"

namespace m47::plans {

QString export_plan(const PlanSets& sets, const QString& path) {
    const bool comma = QFileInfo(path).suffix().toLower() == QLatin1String("csv");
    const QString text = plan_file_text(sets.plan(), sets.programs(), sets.oscillators(),
                                        comma ? QChar(u',') : QChar(u'\t'));
    return write_whole_file(path, text.toUtf8());
}

}  // namespace m47::plans
