// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRect>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <optional>

namespace m47 {

/// Where a window was and how large.
struct WindowPlace {
    QRect rect;
    bool maximised = false;
};

/// What a file is chosen for: each has a folder of its own.
enum class FilePurpose {
    log,
    download,
    slots_of_meter,
    plan,
    report,
    trend,
    old_database,
    recording,
    problem,
    sweep,
    scan_table,
    identification,
    sites,
    letterhead,
};

/// What the program remembers from one run to the next for the user's comfort: window places, the
/// folder used last for each purpose, recent logs, and whether corrected behaviour is wanted.
/// Neither the port nor the language: a meter is never spoken to and a text never changed because
/// of an earlier run. A file that is missing, damaged or cannot be written only means that less is
/// remembered.
class Preferences {
  public:
    static constexpr int kRecentLogs = 8;

    /// Remembers nothing.
    Preferences() = default;
    /// Remembers in `file`; nothing where that is no plain file.
    explicit Preferences(const QString& file);

    /// The user's file, in the folder of the desktop for settings.
    static QString usual_file();

    /// Where it is remembered; empty where nothing is.
    const QString& file() const { return file_; }

    /// The folder that a file was chosen in last for `purpose`, where it is still there; else
    /// `otherwise`.
    QString directory(FilePurpose purpose, const QString& otherwise) const;
    void file_chosen(FilePurpose purpose, const QString& path) const;

    /// The logs opened last that are still there, the latest first.
    QStringList recent_logs() const;
    void log_opened(const QString& path) const;

    /// The lines that stand over a report, and whether a logo is kept for them.
    QString company() const;
    void keep_company(const QString& lines) const;
    bool has_logo() const;
    void keep_has_logo(bool has_logo) const;

    /// The place of the window `name`; nothing where none of a sensible size is known.
    std::optional<WindowPlace> place(const QString& name) const;
    /// A maximised window keeps the rect that it had before.
    void keep_place(const QString& name, const WindowPlace& place) const;

    /// Whether screens open as tabs, which they do until the user wants windows.
    bool screens_as_tabs() const;
    void keep_screens_as_tabs(bool wanted) const;

    /// Whether the keys of the toolbars have words under them, which they do until the user wants
    /// none.
    bool toolbar_words() const;
    void keep_toolbar_words(bool wanted) const;

    /// How the columns of the table `name` stand, in the table's own words; empty where nobody has
    /// changed them.
    QString columns(const QString& name) const;
    void keep_columns(const QString& name, const QString& columns) const;

    /// Whether the user has opened `name` or folded it away; nothing where neither.
    std::optional<bool> unfolded(const QString& name) const;
    void keep_unfolded(const QString& name, bool unfolded) const;

    /// Who measures, as was said last; empty where nobody has said it.
    QString technician() const;
    void keep_technician(const QString& name) const;

    /// Whether the user wants every corrected behaviour from the start on.
    bool starts_corrected() const;
    void keep_starts_corrected(bool wanted) const;

  private:
    QVariant value(const QString& key, const QVariant& otherwise = {}) const;
    void keep(const QString& key, const QVariant& value) const;

    QString file_;
};

}  // namespace m47
