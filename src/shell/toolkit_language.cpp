// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit_language.h"

#include <QCoreApplication>
#include <QLibraryInfo>

namespace m47::shell {

ToolkitLanguage::~ToolkitLanguage() {
    if (in_use_) QCoreApplication::removeTranslator(&italian_);
}

void ToolkitLanguage::follow(const Texts& texts) {
    const bool wanted = texts.language == kItalian;
    if (wanted == in_use_) return;
    if (wanted && italian_.isEmpty()) {
        const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
        if (!italian_.load(QStringLiteral("qtbase_it"), folder)) return;
    }
    in_use_ = wanted && QCoreApplication::installTranslator(&italian_);
    if (!wanted) QCoreApplication::removeTranslator(&italian_);
}

}  // namespace m47::shell
