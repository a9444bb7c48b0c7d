#pragma once

#include "LauncherCore/query/RowCredit.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/FileStore.h"
#include "launcherapp/platform/Image.h"

#include <string>
#include <unordered_map>
#include <unordered_set>

namespace tessarine {

class AppCatalog;
class Icons;

/// A credit as it is drawn.
struct ResolvedCredit {
    std::string name;   ///< never empty
    Image icon;         ///< may be empty without a display
    bool found = false; ///< the named thing is really on this machine
};

/// Looks credits up among the installed applications, once per distinct credit and process, and
/// once more when it was asked for before the catalog's first scan: one that is missing then stays
/// missing until a restart. Asked when a row is drawn, never for a row that can't be seen. Main
/// thread only.
class CreditResolver {
public:
    static constexpr int iconPoints = 16;

    CreditResolver(const AppCatalog& catalog,
                   Icons& icons,
                   const FileStore& files,
                   Environment environment);

    const ResolvedCredit& resolve(const RowCreditSpec& spec);

private:
    ResolvedCredit compute(const RowCreditSpec& spec);
    ResolvedCredit credited(const std::string& path);
    ResolvedCredit missing(const RowCreditSpec& spec);
    Image iconOf(const std::string& themeNameOrPath);

    const AppCatalog& catalog_;
    Icons& icons_;
    const FileStore& files_;
    Environment environment_;
    std::unordered_map<RowCreditSpec, ResolvedCredit> resolved_;
    std::unordered_set<RowCreditSpec> resolvedBeforeScan_;
};

} // namespace tessarine
