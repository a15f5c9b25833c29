// SPDX-License-Identifier: GPL-3.0-or-later
#include "AssetModifier.h"

#include "Log.h"

namespace AssetModifier {

namespace {

bool log(const QString& op, bool success, const QString& error) {
    Log::info(op + QStringLiteral(" asset: ") + (success ? QStringLiteral("Success.") : error));
    return success;
}

}  // namespace

bool favorite(library::Library& library, const QString& localIdentifier, QString* error) {
    QString problem = QStringLiteral("No item %1 in the library").arg(localIdentifier);
    auto asset = library.asset(localIdentifier);
    const bool ok = asset && library.setFavorite(localIdentifier, !asset->favorite, &problem);
    if (!ok && error) *error = problem;
    return log(QStringLiteral("Favoriting"), ok, problem);
}

bool remove(library::Library& library, const QString& localIdentifier, QString* error) {
    QString problem;
    const bool ok = library.deleteAsset(localIdentifier, &problem);
    if (!ok && error) *error = problem;
    return log(QStringLiteral("Deleting"), ok, problem);
}

bool anyRepresentsBurst(const library::FetchResult& fetch) {
    const auto& assets = fetch.assets();
    return std::any_of(assets.begin(), assets.end(), [](const library::Asset& a) { return a.representsBurst; });
}

}  // namespace AssetModifier
