// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <cstdint>
#include <span>

#include "database.h"
#include "engine.h"
#include "fault.h"

namespace m47::db {

/// Why a file of the engine that the program made for itself cannot be used.
struct OwnFileError {
    enum class Kind : std::uint8_t {
        newer,       ///< a later version of the program has written it
        foreign,     ///< no file of this kind
        damaged,     ///< the engine finds damage in it
        locked,      ///< another process has it, or holds it locked for longer than 3 s
        full,        ///< no room on its disk
        unreadable,  ///< it, its journal or its disk cannot be read or written
        read_only,   ///< it or its folder takes no writing
        moved,       ///< the open file was taken away, or another put in its place
        other,
    };
    Kind kind = Kind::other;
    QString path;
    QString detail;  ///< the engine's own words; may be empty
};

/// What an error of the engine, or what it finds of a file, is to a file of the program's own.
OwnFileError own_file_error(const DatabaseError& error);
OwnFileError own_file_error(const EngineFault& fault);

/// What is said of one kind of error, and what helps.
struct OwnFileWording {
    OwnFileError::Kind kind;
    Bilingual words;  ///< %1 is the file
};

/// What `wordings`, which has all kinds, says of `error` in the current language, and the engine's
/// own words in brackets behind `gap` where there are any.
QString own_file_text(std::span<const OwnFileWording> wordings, const OwnFileError& error,
                      const Texts& texts, QChar gap);

/// Such a file could not be read or written; it is as it was. Each kind of file says it in words of
/// its own.
class OwnFileFault : public Fault {
  public:
    explicit OwnFileFault(const OwnFileError& error)
        : Fault(error.detail.toStdString()), error_(error) {}

    const OwnFileError& error() const { return error_; }

  private:
    OwnFileError error_;
};

/// Runs `work`; what the engine says to it is told as a `Told`, the fault of that kind of file.
template <typename Told, typename Work>
auto told_as(const Work& work) {
    try {
        return work();
    } catch (const EngineFault& fault) {
        throw Told(own_file_error(fault));
    }
}

}  // namespace m47::db
