#pragma once

#include "LauncherCore/query/RowCredit.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/FileStore.h"

#include <string>
#include <unordered_map>
#include <unordered_set>

namespace tessarine {

class AppCatalog;

/// A credit as it is drawn.
struct ResolvedCredit {
    std::string name;   ///< never empty
    std::string icon;   ///< a name in the icon theme, or a path; may be empty
    std::string symbol; ///< drawn where there is no such icon
    bool found = false; ///< the named thing is really on this machine
};

/// Looks credits up among the installed applications, once per distinct credit and process, and
/// once more when it was asked for before the catalog's first scan: one that is missing then stays
/// missing until a restart. Asked when a row is drawn, never for a row that can't be seen. Main
/// thread only.
class CreditResolver {
public:
    CreditResolver(const AppCatalog& catalog, const FileStore& files, Environment environment);

    const ResolvedCredit& resolve(const RowCreditSpec& spec);

    /// The same without looking at any disk; null for one that has to be looked for there first.
    const ResolvedCredit* fromMemory(const RowCreditSpec& spec);

private:
    bool isResolved(const RowCreditSpec& spec) const;
    ResolvedCredit compute(const RowCreditSpec& spec);
    ResolvedCredit credited(const std::string& path);
    ResolvedCredit missing(const RowCreditSpec& spec);

    const AppCatalog& catalog_;
    const FileStore& files_;
    Environment environment_;
    std::unordered_map<RowCreditSpec, ResolvedCredit> resolved_;
    std::unordered_set<RowCreditSpec> resolvedBeforeScan_;
};

} // namespace tessarine
