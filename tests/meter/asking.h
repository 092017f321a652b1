// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <string>

#include "instrument.h"

/// The bytes that the meter sends for a command.
inline QByteArray ask(meter::Instrument& instrument, const std::string& command) {
    return QByteArray::fromStdString(instrument.handle(command).bytes);
}

/// The value in a query's answer: without echo, CR and the OK behind it.
inline std::string value(meter::Instrument& instrument, const std::string& command) {
    const std::string bytes = instrument.handle(command).bytes;
    const std::string end = "\rOK\r";
    const std::size_t start = command.size() + 1;
    if (!bytes.ends_with(end) || bytes.size() < start + end.size()) {
        return "no value: " + bytes;
    }
    return bytes.substr(start, bytes.size() - start - end.size());
}

/// The first number in a text; blanks, letters and range marks before it are passed over.
inline double number(const std::string& text) {
    const auto start = text.find_first_of("-0123456789");
    return start == std::string::npos ? -1.0e9 : std::stod(text.substr(start));
}
