// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QUuid>
#include <vector>

#include "site_store.h"

namespace m47::sites {

/// Finds sites as somebody types. It reads the file once and looks in memory then, so that each
/// character is answered at once, and knows the capitals of every language.
class SiteSearch {
  public:
    explicit SiteSearch(const SiteStore& store);

    /// The sites, by name, that have each word of `typed` somewhere: in name, address, customer or
    /// remarks, or as technician, plan or remarks of one of their visits. All of them for no word.
    std::vector<QUuid> find(const QString& typed) const;

  private:
    struct Entry {
        QUuid site;
        QString words;  ///< in small letters
    };
    std::vector<Entry> entries_;
};

}  // namespace m47::sites
