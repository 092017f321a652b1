// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace meter {

/// The text without leading and trailing blanks.
std::string trimmed(std::string_view text);

/// The blank-separated words of the text.
std::vector<std::string> words(std::string_view text);

/// Value of a hexadecimal digit, small or capital; nothing for any other character.
std::optional<unsigned> hex_digit(char c);

/// The text in upper case (ASCII letters only).
std::string upper(std::string_view text);

/// Value of a text of one to nine decimal digits; nothing for any other text.
std::optional<int> whole_number(std::string_view text);

/// As whole_number, and only a value from `low` to `high`.
std::optional<int> whole_number(std::string_view text, int low, int high);

/// Value of digits with an optional "." or "," part; nothing for any other text.
std::optional<double> decimal_number(std::string_view text);

/// The number with a fixed count of decimals, never "-0.0".
std::string fixed(double value, int decimals);

/// The whole number, zero-filled to at least `digits` digits.
std::string zero_filled(int value, int digits);

/// One-decimal exponent form with a short exponent, such as 2.0E-4.
std::string exponent_form(double value);

/// The text cut or filled with blanks to exactly `width` characters.
std::string blank_filled(std::string_view text, std::size_t width);

/// Printable form of line bytes: <CR>, <LF>, <TAB>, <LT> for "<", <XX> for other codes.
std::string escaped(std::string_view bytes);

/// The bytes whose printable form this is, in `bytes`. False when it is none: then they hold what
/// stood before the fault.
bool unescape(std::string_view printable, std::string& bytes);

}  // namespace meter
