// SPDX-License-Identifier: GPL-3.0-or-later
#include "control_array.h"

#include <QRegularExpression>

#include "fault.h"

namespace m47 {

std::vector<QObject*> numbered_children(const QObject* screen, const QString& name) {
    const QRegularExpression pattern(u'^' + QRegularExpression::escape(name) +
                                     QStringLiteral("_\\d+$"));
    const QList<QObject*> found = screen->findChildren<QObject*>(pattern);
    std::vector<QObject*> children(static_cast<std::size_t>(found.size()), nullptr);
    for (QObject* child : found) {
        const std::size_t index = child->objectName().mid(name.size() + 1).toUInt();
        if (index >= children.size() || children[index])
            throw Fault("control array " + name.toStdString() + ": " +
                        child->objectName().toStdString() + " stands behind a gap or twice");
        children[index] = child;
    }
    if (children.empty()) throw Fault("control array " + name.toStdString() + " has no control");
    return children;
}

void wrong_kind_in_array(const QString& name, std::size_t index) {
    throw Fault("control array " + name.toStdString() + ": item " + std::to_string(index) +
                " is of another kind");
}

}  // namespace m47
