#include "LauncherCore/commands/WindowVerb.h"

#include <cmath>
#include <utility>

namespace tessarine {

namespace {

constexpr std::array keywordsOfVerbs{
    std::pair(BuiltinKeyword::windowLeft, WindowVerb::left),
    std::pair(BuiltinKeyword::windowRight, WindowVerb::right),
    std::pair(BuiltinKeyword::windowTop, WindowVerb::top),
    std::pair(BuiltinKeyword::windowBottom, WindowVerb::bottom),
    std::pair(BuiltinKeyword::windowMax, WindowVerb::max),
    std::pair(BuiltinKeyword::windowCenter, WindowVerb::center),
    std::pair(BuiltinKeyword::windowDisplay, WindowVerb::display),
};

struct VerbFacts {
    std::string_view name;
    std::string_view title;
    std::string_view symbol;
};

VerbFacts facts(WindowVerb verb) {
    switch (verb) {
    case WindowVerb::left:
        return {"left", "Left half", "rectangle.lefthalf.filled"};
    case WindowVerb::right:
        return {"right", "Right half", "rectangle.righthalf.filled"};
    case WindowVerb::top:
        return {"top", "Top half", "rectangle.tophalf.filled"};
    case WindowVerb::bottom:
        return {"bottom", "Bottom half", "rectangle.bottomhalf.filled"};
    case WindowVerb::max:
        return {"max", "Maximize", "rectangle.fill"};
    case WindowVerb::center:
        return {"center", "Center", "rectangle.center.inset.filled"};
    case WindowVerb::display:
        return {"display", "Next display", "macwindow.on.rectangle"};
    }
    return {};
}

/// Each edge is rounded by itself, so that two rectangles which share one still meet there.
Rectangle between(double left, double top, double right, double bottom) {
    const double x = std::round(left);
    const double y = std::round(top);
    return {.x = x, .y = y, .width = std::round(right) - x, .height = std::round(bottom) - y};
}

} // namespace

std::optional<WindowVerb> windowVerb(BuiltinKeyword keyword) {
    for (const auto& [each, verb] : keywordsOfVerbs) {
        if (each == keyword)
            return verb;
    }
    return std::nullopt;
}

std::string_view WindowVerbs::name(WindowVerb verb) {
    return facts(verb).name;
}

std::string_view WindowVerbs::title(WindowVerb verb) {
    return facts(verb).title;
}

std::string_view WindowVerbs::symbol(WindowVerb verb) {
    return facts(verb).symbol;
}

Rectangle WindowVerbs::frame(WindowVerb verb, const Rectangle& workArea, const Rectangle& window) {
    const double left = workArea.x;
    const double top = workArea.y;
    const double right = workArea.right();
    const double bottom = workArea.bottom();
    const double middleX = left + workArea.width / 2;
    const double middleY = top + workArea.height / 2;
    switch (verb) {
    case WindowVerb::left:
        return between(left, top, middleX, bottom);
    case WindowVerb::right:
        return between(middleX, top, right, bottom);
    case WindowVerb::top:
        return between(left, top, right, middleY);
    case WindowVerb::bottom:
        return between(left, middleY, right, bottom);
    case WindowVerb::max:
        return between(left, top, right, bottom);
    case WindowVerb::center:
    case WindowVerb::display:
        return {.x = std::round(middleX - window.width / 2),
                .y = std::round(middleY - window.height / 2),
                .width = window.width,
                .height = window.height};
    }
    return window;
}

} // namespace tessarine
