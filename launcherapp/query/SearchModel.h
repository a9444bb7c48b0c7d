#pragma once

#include "launcherapp/query/ResultRow.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tessarine {

class AppCatalog;

/// The state behind the panel: the field's text and the list of rows it gives, recomputed whole
/// with every change of the text, at once and on the main thread. Main thread only.
class SearchModel {
public:
    static constexpr std::size_t maximumRows = 60;

    explicit SearchModel(AppCatalog& catalog);

    const std::string& query() const { return query_; }

    /// Recomputes, also when the text is the same.
    void setQuery(std::string text);

    /// At most `maximumRows`, in their final order.
    const std::vector<ResultRow>& rows() const { return rows_; }

    void recompute();

private:
    AppCatalog& catalog_;
    std::string query_;
    std::vector<ResultRow> rows_;
};

} // namespace tessarine
