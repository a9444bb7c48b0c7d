#include "LauncherCore/answers/UnitTables.h"

#include "LauncherCore/data/Tables.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <charconv>
#include <deque>
#include <unordered_map>
#include <vector>

namespace tessarine {

namespace {

using Answers::Unit;
using Answers::UnitKind;

struct KindRow {
    std::string_view name; ///< in units.txt
    UnitKind kind;
    std::string_view symbol;
    bool isCompounded;
};

constexpr KindRow kinds[] = {
    {"length", UnitKind::length, "ruler", true},
    {"mass", UnitKind::mass, "scalemass", true},
    {"volume", UnitKind::volume, "drop", true},
    {"temp", UnitKind::temperature, "thermometer.medium", false},
    {"speed", UnitKind::speed, "speedometer", false},
    {"data", UnitKind::data, "arrow.left.arrow.right", false},
    {"time", UnitKind::time, "arrow.left.arrow.right", true},
    {"area", UnitKind::area, "square.dashed", false},
};

const KindRow& rowOf(UnitKind kind) {
    return *std::ranges::find(kinds, kind, &KindRow::kind);
}

UnitKind kindNamed(std::string_view name) {
    const auto row = std::ranges::find(kinds, name, &KindRow::name);
    assert(row != std::end(kinds) && "units.txt names a kind that there is");
    return row == std::end(kinds) ? UnitKind::length : row->kind;
}

double decimal(std::string_view text) {
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

/// "0.3048" or "5/9".
double size(std::string_view text) {
    const auto slash = text.find('/');
    if (slash == std::string_view::npos)
        return decimal(text);
    return decimal(text.substr(0, slash)) / decimal(text.substr(slash + 1));
}

using Names = std::vector<std::string_view>;

class Index {
public:
    Index() {
        for (const auto& row : Tables::rows("units")) {
            const auto& names = names_.emplace_back(Tables::list(row.at(3)));
            units_.push_back({.key = names.front(),
                              .kind = kindNamed(row.at(0)),
                              .toBase = size(row.at(1)),
                              .offset = decimal(row.at(2)),
                              .names = names});
            spell(units_.back(), names);
        }
        for (const auto* table : {"unit-aliases", "unit-spellings"})
            for (const auto& row : Tables::rows(table))
                if (const auto* unit = this->unit(row.at(0)))
                    spell(*unit, Tables::list(row.at(1)));
        for (const auto& row : Tables::rows("unit-labels"))
            labels_[row.at(0)] = {row.at(1), row.at(2), row.at(3), row.at(4)};
        for (const auto& row : Tables::rows("unit-fans"))
            fans_[row.at(0)] = Tables::list(row.at(1));
        for (const auto& row : Tables::rows("measure-systems"))
            systems_[row.at(0)] = {reread(row.at(0), row.at(1)), reread(row.at(0), row.at(2))};
    }

    const Unit* unit(std::string_view spelling) const {
        const auto found = spellings_.find(spelling);
        return found == spellings_.end() ? nullptr : found->second;
    }

    const Unit* reread(std::string_view key, MeasureSystem measure) const {
        const auto found =
            measure == MeasureSystem::usCustomary ? systems_.end() : systems_.find(key);
        if (found == systems_.end())
            return nullptr;
        return measure == MeasureSystem::imperial ? found->second.imperial : found->second.metric;
    }

    bool isReread(const Unit& unit, MeasureSystem measure) const {
        return std::ranges::any_of(systems_, [&](const auto& system) {
            const auto* form = reread(system.first, measure);
            return form && *form == unit;
        });
    }

    const UnitTables::Label* label(std::string_view key) const {
        const auto found = labels_.find(key);
        return found == labels_.end() ? nullptr : &found->second;
    }

    std::span<const std::string_view> fan(std::string_view key) const {
        const auto found = fans_.find(key);
        return found == fans_.end() ? std::span<const std::string_view>() : found->second;
    }

private:
    struct Reread {
        const Unit* imperial = nullptr;
        const Unit* metric = nullptr;
    };

    void spell(const Unit& unit, const Names& spellings) {
        for (const auto spelling : spellings)
            spellings_.try_emplace(spelling, &unit);
    }

    /// Null for a unit that stays what it is.
    const Unit* reread(std::string_view from, std::string_view to) const {
        return from == to ? nullptr : unit(to);
    }

    // Deques, since the units are pointed to while more are added.
    std::deque<Names> names_;
    std::deque<Unit> units_;
    std::unordered_map<std::string_view, const Unit*> spellings_;
    std::unordered_map<std::string_view, UnitTables::Label> labels_;
    std::unordered_map<std::string_view, Names> fans_;
    std::unordered_map<std::string_view, Reread> systems_;
};

const Index& index() {
    static const Index index;
    return index;
}

} // namespace

const Unit* UnitTables::unit(std::string_view spelling) {
    return index().unit(spelling);
}

const Unit* UnitTables::reread(std::string_view key, MeasureSystem measure) {
    return index().reread(key, measure);
}

bool UnitTables::isReread(const Unit& unit, MeasureSystem measure) {
    return index().isReread(unit, measure);
}

const UnitTables::Label* UnitTables::label(std::string_view key) {
    return index().label(key);
}

std::span<const std::string_view> UnitTables::fan(std::string_view key) {
    return index().fan(key);
}

std::string_view UnitTables::symbol(UnitKind kind) {
    return rowOf(kind).symbol;
}

bool UnitTables::isCompounded(UnitKind kind) {
    return rowOf(kind).isCompounded;
}

} // namespace tessarine
