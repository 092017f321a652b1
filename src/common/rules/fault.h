// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <optional>
#include <stdexcept>
#include <string>

#include "texts.h"

namespace m47 {

/// A run-time fault of a handler: something that cannot go on, such as a record move with no plan
/// open. Whoever does not trap it on purpose lets it end the running handler, which then shows one
/// message box; the program goes on.
class Fault : public std::runtime_error {
  public:
    explicit Fault(const std::string& what) : std::runtime_error(what) {}
    /// What a user can meet stands in both languages; `words` have to live as long as the program.
    explicit Fault(const Bilingual& words) : std::runtime_error(words.english), words_(words) {}

    /// What the user is told, in the language of `texts`; what() where there are no other words.
    virtual QString text(const Texts& texts) const;

  private:
    std::optional<Bilingual> words_;
};

/// An answer of the meter that is not surely the one to the question, or not whole: what was being
/// measured has no value.
class DoubtfulAnswer : public Fault {
  public:
    /// `command` is what the meter was asked or told.
    explicit DoubtfulAnswer(const std::string& command)
        : Fault("the meter's answer to " + command + " is doubtful"), command_(command) {}

    const std::string& command() const { return command_; }

  private:
    std::string command_;
};

/// Thrown by the link when the user has asked the program to end (SIGINT, SIGTERM) while a
/// measurement waits: no fault, so that no error trap of a cycle swallows it.
class Interrupted {};

/// What is told of a fault that nobody trapped on purpose, in the language of `texts`.
QString words_of(const std::exception& exception, const Texts& texts);

}  // namespace m47
