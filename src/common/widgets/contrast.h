// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>

namespace m47 {

/// How well `one` is seen on `other`: from 1 (not at all) to 21 (black on white), as the guidelines
/// for accessible content measure it.
double contrast(const QColor& one, const QColor& other);

/// `share` (0 to 1) of `front` and the rest of `back`.
QColor mixed(const QColor& front, const QColor& back, double share);

/// The colour nearest to `ground`, on the way from it to `text`, that is seen on it as well as
/// `least` asks; `text` itself where none is.
QColor just_seen(const QColor& text, const QColor& ground, double least);

/// What an outline and what a text needs at least.
inline constexpr double kOutlineContrast = 3.0;
inline constexpr double kTextContrast = 4.5;

}  // namespace m47
