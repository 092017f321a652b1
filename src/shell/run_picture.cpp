// SPDX-License-Identifier: GPL-3.0-or-later
#include "run_picture.h"

#include <QBuffer>
#include <QFileInfo>

#include "realtime.h"
#include "save_file.h"

namespace m47::shell {
namespace {

constexpr QSize kLeastSize(900, 560);

bool draw_picture(const QPixmap& picture, const QString& name, QByteArray& bytes) {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    const QByteArray kind = QFileInfo(name).suffix().toLatin1();
    return picture.save(&buffer, kind.constData()) || picture.save(&buffer, "PNG");
}

}  // namespace

QString write_run_picture(std::unique_ptr<realtime::RealtimeRules> rules, const QString& file) {
    realtime::Realtime screen(std::move(rules));
    screen.fill_in();
    screen.resize(screen.sizeHint().expandedTo(kLeastSize));
    // What is not shown finds its places when it is drawn, and only then knows which row is last.
    static_cast<void>(screen.grab());
    screen.show_newest();
    QByteArray bytes;
    const bool drawn = draw_picture(screen.grab(), file, bytes);
    return drawn ? write_whole_file(file, bytes) : QStringLiteral("not drawn");
}

}  // namespace m47::shell
