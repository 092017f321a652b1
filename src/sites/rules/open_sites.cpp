// SPDX-License-Identifier: GPL-3.0-or-later
#include "open_sites.h"

#include <QFileInfo>

#include "file_place.h"

namespace m47::sites {

bool OpenSites::is_there() const {
    const QFileInfo file(path_);
    return file.exists() || file.isSymLink();
}

std::shared_ptr<SiteStore> OpenSites::look() {
    return store_ || is_there() ? open() : nullptr;
}

std::shared_ptr<SiteStore> OpenSites::open() {
    if (store_) return store_;
    StoreError error;
    store_ = SiteStore::open(path_, error);
    if (!store_) throw StoreFault(error);
    number_ = platform::file_number(path_);
    return store_;
}

bool OpenSites::was_replaced() const {
    return store_ && platform::file_number(path_) != number_;
}

bool OpenSites::let_go() {
    if (store_.use_count() > 1) return false;
    store_.reset();
    return true;
}

}  // namespace m47::sites
