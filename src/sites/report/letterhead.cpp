// SPDX-License-Identifier: GPL-3.0-or-later
#include "letterhead.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <algorithm>

#include "save_file.h"

namespace m47::sites {
namespace {

constexpr Bilingual kLogoMissing{"The logo '%1' cannot be read.",
                                 "Il logo '%1' non può essere letto."};
constexpr Bilingual kLogoNone{"The logo '%1' is no PNG or JPEG picture, or it is damaged.",
                              "Il logo '%1' non è un'immagine PNG o JPEG, o è danneggiato."};
constexpr Bilingual kLogoLarge{"The logo '%1' is too large: at most 10 MB, 8000 pixels to a side.",
                               "Il logo '%1' è troppo grande: al massimo 10 MB, 8000 pixel per "
                               "lato."};

QString logo_file(const Preferences& preferences) {
    if (preferences.file().isEmpty()) return {};
    return QFileInfo(preferences.file()).dir().filePath(QStringLiteral("letterhead-logo.png"));
}

QStringList written_lines(const QString& text) {
    QStringList lines;
    for (const QString& line : text.split(u'\n'))
        if (!line.trimmed().isEmpty()) lines += line.simplified();
    return lines;
}

/// The picture in `bytes`, by what they are and not by the name of their file; null where they are
/// none of both formats. `is_large` where it is beyond the bounds.
QImage picture_in(QByteArray& bytes, bool& is_large) {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    // Other formats, which the system may have plug-ins for, are not let near a foreign file.
    const QByteArray format = bytes.startsWith("\x89PNG") ? "png" : "jpeg";
    QImageReader reader(&buffer, format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    is_large = size.width() > kMostLogoSide || size.height() > kMostLogoSide;
    if (!size.isValid() || size.isEmpty() || is_large) return {};
    if (std::max(size.width(), size.height()) > kLogoKeptSide)
        reader.setScaledSize(
            size.scaled(kLogoKeptSide, kLogoKeptSide, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    return reader.read();
}

}  // namespace

LogoRead read_logo(const QString& path, const Texts& texts) {
    const auto refused = [&](const Bilingual& why) {
        return LogoRead{.logo = {}, .fault = texts.pick(why).arg(path)};
    };
    // A pipe or a device would be waited for.
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) return refused(kLogoMissing);
    QByteArray bytes = file.read(kMostLogoBytes + 1);
    if (bytes.size() > kMostLogoBytes) return refused(kLogoLarge);
    bool is_large = false;
    const QImage picture = picture_in(bytes, is_large);
    if (is_large) return refused(kLogoLarge);
    return picture.isNull() ? refused(kLogoNone) : LogoRead{.logo = picture, .fault = {}};
}

QStringList Letterhead::lines() const {
    return written_lines(company).mid(0, kMostCompanyLines);
}

int Letterhead::lines_left_out() const {
    return std::max(0, static_cast<int>(written_lines(company).size()) - kMostCompanyLines);
}

Letterhead kept_letterhead(const Preferences& preferences, const Texts& texts, QString* fault) {
    Letterhead letterhead{
        .company = preferences.company(), .technician = preferences.technician(), .logo = {}};
    if (fault) fault->clear();
    const QString path = logo_file(preferences);
    if (path.isEmpty() || !preferences.has_logo()) return letterhead;
    const LogoRead read = read_logo(path, texts);
    if (fault) *fault = read.fault;
    letterhead.logo = read.logo;
    return letterhead;
}

QString keep_letterhead(const Preferences& preferences, const Letterhead& letterhead) {
    preferences.keep_company(letterhead.company);
    preferences.keep_technician(letterhead.technician);
    const QString path = logo_file(preferences);
    if (path.isEmpty()) return {};
    QString reason;
    if (letterhead.logo.isNull()) {
        QFile::remove(path);
    } else {
        QBuffer png;
        png.open(QIODevice::WriteOnly);
        letterhead.logo.save(&png, "PNG");
        reason = write_whole_file(path, png.data());
    }
    preferences.keep_has_logo(!letterhead.logo.isNull() && reason.isEmpty());
    return reason;
}

}  // namespace m47::sites
