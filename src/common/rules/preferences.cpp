// SPDX-License-Identifier: GPL-3.0-or-later
#include "preferences.h"

#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

namespace m47 {
namespace {

const QString kDirectory = QStringLiteral("files/directory");
const QString kCompany = QStringLiteral("letterhead/company");
const QString kHasLogo = QStringLiteral("letterhead/logo");
const QString kLogs = QStringLiteral("files/logs");
const QString kScreensAsTabs = QStringLiteral("windows/tabs");
const QString kToolbarWords = QStringLiteral("windows/words");
const QString kTechnician = QStringLiteral("letterhead/technician");
const QString kStartsCorrected = QStringLiteral("behaviour/corrected");

// A window of another size has not been one that a user left.
constexpr int kSmallestWindow = 50;
constexpr int kLargestWindow = 20000;

bool sensible(const QRect& rect) {
    const auto fits = [](int length) {
        return length >= kSmallestWindow && length <= kLargestWindow;
    };
    return fits(rect.width()) && fits(rect.height()) && qAbs(rect.x()) <= kLargestWindow &&
           qAbs(rect.y()) <= kLargestWindow;
}

/// In the order of FilePurpose; they stand in the user's file.
constexpr const char* kPurposes[] = {
    "log",       "download", "slots", "plan",       "report",         "trend", "old_database",
    "recording", "problem",  "sweep", "scan_table", "identification", "sites", "letterhead"};

QString directory_key(FilePurpose purpose) {
    return kDirectory + u'_' + QLatin1String(kPurposes[static_cast<std::size_t>(purpose)]);
}

QString rect_key(const QString& name) {
    return QStringLiteral("windows/") + name;
}

QString maximised_key(const QString& name) {
    return rect_key(name) + QStringLiteral("_maximised");
}

QString columns_key(const QString& name) {
    return QStringLiteral("tables/%1_columns").arg(name);
}

QString unfolded_key(const QString& name) {
    return QStringLiteral("tables/%1_unfolded").arg(name);
}

}  // namespace

QString Preferences::usual_file() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/m47-remote/m47-remote.ini");
}

Preferences::Preferences(const QString& file) {
    // Anything else, such as a pipe, would be waited for.
    const QFileInfo about(file);
    if (!about.exists() || about.isFile()) file_ = file;
}

QVariant Preferences::value(const QString& key, const QVariant& otherwise) const {
    if (file_.isEmpty()) return otherwise;
    return QSettings(file_, QSettings::IniFormat).value(key, otherwise);
}

void Preferences::keep(const QString& key, const QVariant& value) const {
    if (!file_.isEmpty()) QSettings(file_, QSettings::IniFormat).setValue(key, value);
}

QString Preferences::directory(FilePurpose purpose, const QString& otherwise) const {
    const QString last = value(directory_key(purpose)).toString();
    return !last.isEmpty() && QFileInfo(last).isDir() ? last : otherwise;
}

void Preferences::file_chosen(FilePurpose purpose, const QString& path) const {
    keep(directory_key(purpose), QFileInfo(path).absolutePath());
}

QStringList Preferences::recent_logs() const {
    QStringList there;
    for (const QString& path : value(kLogs).toStringList())
        if (QFileInfo(path).isFile() && !there.contains(path) && there.size() < kRecentLogs)
            there += path;
    return there;
}

void Preferences::log_opened(const QString& path) const {
    // A new log is no file before its first line, so what is not there is kept here.
    QStringList logs = value(kLogs).toStringList();
    const QString absolute = QFileInfo(path).absoluteFilePath();
    logs.removeAll(absolute);
    logs.prepend(absolute);
    keep(kLogs, QStringList(logs.mid(0, kRecentLogs)));
}

QString Preferences::company() const {
    return value(kCompany).toString();
}

void Preferences::keep_company(const QString& lines) const {
    keep(kCompany, lines);
}

bool Preferences::has_logo() const {
    return value(kHasLogo).toBool();
}

void Preferences::keep_has_logo(bool has_logo) const {
    keep(kHasLogo, has_logo);
}

std::optional<WindowPlace> Preferences::place(const QString& name) const {
    const WindowPlace place{value(rect_key(name)).toRect(), value(maximised_key(name)).toBool()};
    if (!sensible(place.rect)) return {};
    return place;
}

void Preferences::keep_place(const QString& name, const WindowPlace& place) const {
    keep(maximised_key(name), place.maximised);
    if (!place.maximised || !this->place(name)) keep(rect_key(name), place.rect);
}

bool Preferences::screens_as_tabs() const {
    return value(kScreensAsTabs, true).toBool();
}

void Preferences::keep_screens_as_tabs(bool wanted) const {
    keep(kScreensAsTabs, wanted);
}

bool Preferences::toolbar_words() const {
    return value(kToolbarWords, true).toBool();
}

void Preferences::keep_toolbar_words(bool wanted) const {
    keep(kToolbarWords, wanted);
}

QString Preferences::columns(const QString& name) const {
    return value(columns_key(name)).toString();
}

void Preferences::keep_columns(const QString& name, const QString& columns) const {
    keep(columns_key(name), columns);
}

std::optional<bool> Preferences::unfolded(const QString& name) const {
    const QVariant known = value(unfolded_key(name));
    return known.isValid() ? std::optional(known.toBool()) : std::nullopt;
}

void Preferences::keep_unfolded(const QString& name, bool unfolded) const {
    keep(unfolded_key(name), unfolded);
}

QString Preferences::technician() const {
    return value(kTechnician).toString();
}

void Preferences::keep_technician(const QString& name) const {
    keep(kTechnician, name);
}

bool Preferences::starts_corrected() const {
    return value(kStartsCorrected).toBool();
}

void Preferences::keep_starts_corrected(bool wanted) const {
    keep(kStartsCorrected, wanted);
}

}  // namespace m47
