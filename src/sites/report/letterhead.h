// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QString>
#include <QStringList>

#include "preferences.h"
#include "texts.h"

namespace m47::sites {

/// A logo file has no more bytes, and its picture no more pixels to a side.
inline constexpr qint64 kMostLogoBytes = qint64{10} * 1024 * 1024;
inline constexpr int kMostLogoSide = 8000;
/// As it is kept: what paper shows of more is nothing.
inline constexpr int kLogoKeptSide = 1000;
/// More lines of a company's name and address are left out.
inline constexpr int kMostCompanyLines = 6;

/// A logo, or why there is none.
struct LogoRead {
    QImage logo;
    QString fault;  ///< one sentence; empty where all is well, also where there is no logo at all
};

/// The picture in the PNG or JPEG file at `path`, no larger than it is kept; whatever the file
/// holds, no more of it is read than the bounds above allow.
LogoRead read_logo(const QString& path, const Texts& texts);

/// Who writes a report.
struct Letterhead {
    QString company;  ///< several lines
    QString technician;
    QImage logo;

    /// The company, at most kMostCompanyLines lines.
    QStringList lines() const;
    /// How many more there are.
    int lines_left_out() const;
};

/// What the user has entered; `fault`, where one is wanted, says why the logo cannot be shown.
Letterhead kept_letterhead(const Preferences& preferences, const Texts& texts,
                           QString* fault = nullptr);

/// Keeps it, the logo as a file beside the preferences, whatever becomes of the one that it was
/// chosen from. Nothing on success, else the reason why the logo is not kept.
QString keep_letterhead(const Preferences& preferences, const Letterhead& letterhead);

}  // namespace m47::sites
