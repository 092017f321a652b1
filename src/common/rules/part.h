// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPluginLoader>
#include <QString>
#include <QStringList>

namespace m47 {

/// A part of the program in a file of its own. The libraries behind it are many and large and not
/// every day needs them, so that it is loaded when it is first asked for.
class Part {
  public:
    /// `name` is that of the file without "lib" and suffix; `folders` are searched for it.
    explicit Part(const char* name, const QStringList& folders = usual_folders());

    /// What the part does as an `Offer`. Null where its file is missing or damaged; fault() then
    /// names it, and the next call tries once more.
    template <class Offer>
    Offer* offer() {
        auto* const offer = qobject_cast<Offer*>(load());
        fault_ = offer ? QString() : path_;
        return offer;
    }

    /// True where its file lies in one of the folders; it is not loaded.
    bool is_there();

    /// Where it is, or would be.
    const QString& path() const { return path_; }

    /// The file where it could not be loaded; empty when it was, or was not asked for yet.
    const QString& fault() const { return fault_; }

    /// Beside the program where it was built, and where an installation has it.
    static QStringList usual_folders();

  private:
    void find();
    QObject* load();

    QString file_;
    QStringList folders_;
    QPluginLoader loader_;
    QString path_;
    QString fault_;
};

}  // namespace m47
