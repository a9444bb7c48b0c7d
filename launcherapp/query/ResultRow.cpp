#include "launcherapp/query/ResultRow.h"

namespace tessarine {

std::string_view name(RowKind kind) {
    switch (kind) {
    case RowKind::app:
        return "app";
    case RowKind::command:
        return "command";
    case RowKind::file:
        return "file";
    case RowKind::calc:
        return "calc";
    case RowKind::web:
        return "web";
    case RowKind::hint:
        return "hint";
    }
    return "";
}

} // namespace tessarine
