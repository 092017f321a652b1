// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// What a target asserts about a parser. A failure is reported like a crash, with its input kept.
#define HOLDS(condition)                                                         \
    do {                                                                         \
        if (!(condition)) {                                                      \
            std::fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                        \
        }                                                                        \
    } while (false)

namespace fuzzing {

/// An input, from whose front a target takes what it needs besides the text.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size)
        : rest_(reinterpret_cast<const char*>(data), size) {}

    /// The next byte; 0 when there is none left.
    unsigned byte() {
        if (rest_.empty()) return 0;
        const auto value = static_cast<unsigned char>(rest_.front());
        rest_.remove_prefix(1);
        return value;
    }

    std::string_view bytes() const { return rest_; }

    /// What is left, as the link hands over what the line brings.
    QString text() const {
        return QString::fromLatin1(rest_.data(), static_cast<qsizetype>(rest_.size()));
    }

    QByteArray byte_array() const {
        return QByteArray(rest_.data(), static_cast<qsizetype>(rest_.size()));
    }

  private:
    std::string_view rest_;
};

}  // namespace fuzzing
