// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <optional>

#include "site_store.h"

namespace m47::sites {

/// The one SiteStore of the process on the file of sites in the working folder, for all that work
/// on it in the windows. It is opened when it is first asked for.
class OpenSites {
  public:
    /// `path`, which has to outlive it, is looked at when the file is opened.
    explicit OpenSites(const QString& path) : path_(path) {}
    OpenSites(const OpenSites&) = delete;
    OpenSites& operator=(const OpenSites&) = delete;

    const QString& path() const { return path_; }
    /// There is such a file, or a link of that name; it is not opened.
    bool is_there() const;
    bool is_open() const { return store_ != nullptr; }

    /// The store where there is a file; nullptr where there is none. A StoreFault where the file
    /// cannot be used.
    std::shared_ptr<SiteStore> look();
    /// The store, made where there is none yet. A StoreFault where it cannot be used.
    std::shared_ptr<SiteStore> open();
    /// The file that is open was taken away, or another one stands in its place.
    bool was_replaced() const;
    /// Lets go of the store, so that the next look() opens the file anew; false, and nothing is
    /// done, while somebody else still has it.
    bool let_go();

    /// The visit that is being recorded into the store now; null where none is.
    QUuid running;

    /// Told by whoever has written to the store, so that others show it.
    void changed() const {
        if (on_changed) on_changed();
    }
    std::function<void()> on_changed;

  private:
    const QString& path_;
    std::shared_ptr<SiteStore> store_;
    std::optional<quint64> number_;  ///< of the file that is open
};

}  // namespace m47::sites
